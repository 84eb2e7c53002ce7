// How the program ends when it cannot do what was asked.
#pragma once

#include <stdexcept>

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

}  // namespace glimmerhost
