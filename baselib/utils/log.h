// SPDX-License-Identifier: BSD-3-Clause
// The log that the base services report through. Lines go to the standard error stream:
//
//   (LX LIB) 14:03:07.25 WARN : MP: Can't set idle priority: access denied
//   (LX LIB)                  : a continuation
//
// A text ends in one line feed whether or not it brings one, and is cut at 4095 characters, that
// one included. It is formatted twice: "%%" in what the first formatting gives, from the format or
// from an argument, is written as "%". Any thread may log; lines stay whole.
#pragma once

#include <cstdint>

namespace lx {

enum LogLevel : std::int32_t {
  kLogError = 1,
  kLogWarn = 2,
  kLogInfo = 3,
  kLogDebug = 4,  // from here on nothing is written
  kLogTrace = 5,
};

// Writes one line. Levels above kLogTrace count as that; those below kLogError are dropped.
// A dropped message is formatted all the same, so hot paths log failures only.
//   format  as of printf
// 1 for a line, 0 for a dropped one, and the threshold itself where that is negative and
// keeps the log silent.
std::int32_t log_message(std::int32_t level, const char* format, ...)
    __attribute__((format(printf, 2, 3)));

// Writes a line that belongs to what was written last; nothing before the first that was written.
void log_continue(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace lx
