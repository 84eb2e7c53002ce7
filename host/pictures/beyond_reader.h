// SPDX-License-Identifier: BSD-3-Clause
// BeyondReader: a picture that this program's own readers leave to the plug-in.
#pragma once

#include <stdexcept>
#include <string>

namespace glimmerhost {

// What own readers do with files of which they know less than the plug-in does.
enum class Reader {
  kBestEffort,  // take what they understand
  kExact,       // throw BeyondReader unless samples, and all that travels with them, come out as
                // the plug-in would have them
};

// The reason, as in "its colours are CMYK". No failure of the file, and so none of its kind.
class BeyondReader : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// Runs a check that throws BeyondReader. Where somebody wants the reason instead, it is told.
template <class Check>
void NoteBeyond(std::string* reason, const Check& check) {
  try {
    check();
  } catch (const BeyondReader& beyond) {
    if (reason == nullptr) {
      throw;
    }
    *reason = beyond.what();
  }
}

}  // namespace glimmerhost
