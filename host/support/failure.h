// SPDX-License-Identifier: BSD-3-Clause
// How the program ends when it cannot do what was asked.
#pragma once

#include <exception>
#include <new>
#include <stdexcept>
#include <string>

namespace glimmerhost {

inline constexpr int kExitDone = 0;
inline constexpr int kExitFailed = 1;
inline constexpr int kExitUsage = 2;
inline constexpr int kExitMissing = 3;

// The work failed: one line for a person, which names the thing and says what is wrong.
class Failure : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// An input is not there, which may only mean that it is not there yet.
class MissingInput : public Failure {
 public:
  using Failure::Failure;
};

// The command was wrong: one line that names the option, the value and what is allowed.
class UsageError : public std::runtime_error {
 public:
  using std::runtime_error::runtime_error;
};

// For a thread that has to tell what went wrong, also where there is no memory to tell it with.
inline std::string FaultText(const std::exception& fault) noexcept {
  // So short that a string takes no memory for it.
  constexpr const char* kNoMemory = "no memory left";
  try {
    const bool isNoMemory = dynamic_cast<const std::bad_alloc*>(&fault) != nullptr;
    return isNoMemory ? kNoMemory : fault.what();
  } catch (const std::bad_alloc&) {
    return kNoMemory;
  }
}

// "--sides must be a whole number from 3 to 50, not 2".
//   name   what was set: an option, or a name in a file
//   what   which values it takes
//   given  the one that it was given
inline UsageError MustBe(const std::string& name, const std::string& what,
                         const std::string& given) {
  const bool isPlain = !given.empty() && given.find(' ') == std::string::npos;
  return UsageError(name + " must be " + what + ", not " + (isPlain ? given : '"' + given + '"'));
}

}  // namespace glimmerhost
