#include "baselib/utils/log.h"

#include <cstdarg>
#include <cstdio>
#include <cstring>

#include "baselib/utils/log_sink.h"

namespace lx {
namespace {

constexpr const char* kPrefix = "(LX LIB)";
constexpr const char* kLabels[] = {"ERROR", "WARN ", "INFO "};

using Text = char[4096];

// One call of the stream for a line, so that the lines of two threads do not mix.
void WriteLine(const char* label, const Text& text) {
  const std::size_t length = std::strlen(text);
  const bool ended = length > 0 && text[length - 1] == '\n';
  std::fprintf(stderr, "%s %s: %s%s", kPrefix, label, text, ended ? "" : "\n");
}

}  // namespace

LogSink& log_sink() {
  static constinit LogSink sink;
  return sink;
}

void log_message(std::int32_t level, const char* format, ...) {
  if (level < kLogError || level > kLogInfo) {
    return;
  }
  Text text;
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  WriteLine(kLabels[level - kLogError], text);
  log_sink().lastLevel = level;
}

void log_continue(const char* format, ...) {
  if (log_sink().lastLevel < kLogError) {
    return;
  }
  Text text;
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  WriteLine("     ", text);
}

}  // namespace lx
