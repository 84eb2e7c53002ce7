// The log that the base services report through. Lines go to the standard error stream.
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

// Writes one line: the level and the text, ended by one line feed whether or not the text
// brings one. Levels above kLogTrace count as that; those below kLogError are dropped.
//   format  as of printf
void log_message(std::int32_t level, const char* format, ...) __attribute__((format(printf, 2, 3)));

// Writes a line that belongs to what was written last; nothing before the first message.
void log_continue(const char* format, ...) __attribute__((format(printf, 1, 2)));

}  // namespace lx
