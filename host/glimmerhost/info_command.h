// glimmerhost info: which engines there are, what the module registered, and the parameters of its
// page.
#pragma once

#include <iosfwd>
#include <string>

namespace glimmerhost {

// As RunOptions has them.
struct InfoOptions {
  std::string engine;
  std::string module;
};

// Throws Failure or UsageError.
void RunInfo(const InfoOptions& options, std::ostream& out);

}  // namespace glimmerhost
