#include "baselib/utils/log.h"

#include <atomic>
#include <cstdarg>
#include <cstdio>
#include <cstring>

namespace lx {
namespace {

constexpr const char* kPrefix = "(LX LIB)";
constexpr const char* kLabels[] = {"ERROR", "WARN ", "INFO "};

std::atomic<bool> anyWritten{false};

// One call of the stream for a line, so that the lines of two threads do not mix.
void WriteLine(const char* label, const char* format, std::va_list arguments) {
  char text[4096];
  std::vsnprintf(text, sizeof text, format, arguments);
  const std::size_t length = std::strlen(text);
  const bool ended = length > 0 && text[length - 1] == '\n';
  std::fprintf(stderr, "%s %s: %s%s", kPrefix, label, text, ended ? "" : "\n");
}

}  // namespace

void log_message(std::int32_t level, const char* format, ...) {
  if (level < kLogError || level > kLogInfo) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  WriteLine(kLabels[level - kLogError], format, arguments);
  va_end(arguments);
  anyWritten = true;
}

void log_continue(const char* format, ...) {
  if (!anyWritten) {
    return;
  }
  std::va_list arguments;
  va_start(arguments, format);
  WriteLine("     ", format, arguments);
  va_end(arguments);
}

}  // namespace lx
