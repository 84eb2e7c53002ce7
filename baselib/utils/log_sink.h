// What the log keeps for the whole process. For its own source, and for tests that want to
// begin anew.
#pragma once

#include <atomic>
#include <cstdint>

namespace lx {

struct LogSink {
  std::atomic<std::int32_t> lastLevel{-1};  // of the last message that was written
};

LogSink& log_sink();

}  // namespace lx
