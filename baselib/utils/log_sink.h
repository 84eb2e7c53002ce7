// SPDX-License-Identifier: BSD-3-Clause
// What the log keeps for the whole process. For its own sources, and for tests, which may
// change any of it: nothing else does.
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <mutex>

namespace lx {

inline constexpr std::size_t kLogTextBytes = 4096;

// Built when the module is loaded and never destroyed: late static destructors may log.
struct LogSink {
  LogSink();

  double clockBase = 0.0;       // get_seconds at the last look at the wall clock; 0: never
  double daySeconds = 0.0;      // since local midnight, at that moment
  std::int32_t threshold = 3;   // the highest level that is written; negative: none
  std::int32_t lastLevel = -1;  // of the last message that was written
  std::FILE* stream = nullptr;  // the standard error stream, from the first message on
  char text[kLogTextBytes] = {};
  char prefix[80] = "(LX LIB)";
  bool isFile = false;      // stream is a file of the log's own
  bool hasConsole = false;  // the process had a console when the log was built

  // Lines go to the console too, and even where there was one before.
  bool mirror = false;
  bool mirrorAlways = false;

  char scratch[kLogTextBytes] = {};  // of the first formatting

  // Over everything here and over the console. It is taken last of all locks, and nothing
  // else is taken under it.
  std::recursive_mutex mutex;
};

LogSink& log_sink();

}  // namespace lx
