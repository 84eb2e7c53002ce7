// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/log.h"

#include <cmath>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <type_traits>

#include "baselib/platform/platform.h"
#include "baselib/threads/clock.h"
#include "baselib/utils/console.h"
#include "baselib/utils/convert.h"
#include "baselib/utils/log_sink.h"
#include "baselib/winbits/console_title.h"

namespace lx {
namespace {

// Each five characters wide. The last is that of a continuation.
constexpr const char* kLabels[] = {"NONE ", "ERROR", "WARN ", "INFO ", "DEBUG", "TRACE", "     "};
constexpr std::int32_t kContinuation = 6;

static_assert(std::is_trivially_destructible_v<LogSink>, "the log outlives every static");

// The log is there from the module's load on.
[[maybe_unused]] const LogSink& builtAtLoad = log_sink();

// Intended: a text is read as a format a second time. Of all that a format can say only
// "%%" has a meaning without arguments; everything else stands as it is.
void FormatAgain(const char* scratch, char* text) {
  while (*scratch != '\0') {
    if (scratch[0] == '%' && scratch[1] == '%') {
      ++scratch;
    }
    *text++ = *scratch++;
  }
  *text = '\0';
}

// In place of the last character where there is no room behind it.
void EndLine(char* text) {
  std::size_t length = std::strlen(text);
  if (length > 0 && text[length - 1] == '\n') {
    return;
  }
  if (length == kLogTextBytes - 1) {
    --length;
  }
  text[length] = '\n';
  text[length + 1] = '\0';
}

// Seconds since midnight. The wall clock is read once, and again only if the counter has
// gone back; in between the counter carries the time, which gives it hundredths.
double TimeOfDay(LogSink* sink) {
  const double now = get_seconds();
  if (now < sink->clockBase || sink->clockBase == 0.0) {
    sink->daySeconds = GetPlatform().localDaySeconds();
    sink->clockBase = now;
  }
  constexpr double kDay = 86400.0;
  constexpr double kPerDay = 1.1574074074074073e-05;
  const double seconds = now - sink->clockBase + sink->daySeconds;
  return seconds >= kDay ? seconds - std::floor(seconds * kPerDay) * kDay : seconds;
}

template <class... Arguments>
void Write(const LogSink& sink, const char* format, Arguments... arguments) {
  std::fprintf(sink.stream, format, arguments...);
  if (sink.mirror && (!sink.hasConsole || sink.mirrorAlways)) {
    console_print(format, arguments...);
  }
}

void WriteLine(LogSink* sink, std::int32_t level) {
  EndLine(sink->text);
  if (level == kContinuation) {
    Write(*sink, "%s                  : %s", sink->prefix, sink->text);
    return;
  }
  const double time = TimeOfDay(sink);
  const std::int32_t whole = TruncateToInt32(time);
  const std::int32_t hours = whole / 3600;
  const std::int32_t minutes = whole % 3600 / 60;
  // Intended: 59.996 seconds are written as 60.00.
  const double seconds = time - (hours * 60 + minutes) * 60;
  Write(*sink, "%s %02d:%02d:%05.2f %s: %s", sink->prefix, hours, minutes, seconds, kLabels[level],
        sink->text);
}

// A message that has been formatted once, into scratch.
std::int32_t LogStep(LogSink* sink, std::int32_t level) {
  if (sink->threshold < 0) {
    return sink->threshold;
  }
  if (sink->stream == nullptr) {
    sink->stream = stderr;
  }
  if (level > kLogTrace) {
    level = kLogTrace;
  }
  if (level < kLogError || level > sink->threshold) {
    return 0;
  }
  FormatAgain(sink->scratch, sink->text);
  WriteLine(sink, level);
  sink->lastLevel = level;
  return 1;
}

}  // namespace

LogSink::LogSink() : hasConsole(has_console_title()) {}

LogSink& log_sink() {
  static LogSink sink;
  return sink;
}

std::int32_t log_message(std::int32_t level, const char* format, ...) {
  LogSink& sink = log_sink();
  const std::scoped_lock hold(sink.mutex);
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(sink.scratch, sizeof sink.scratch, format, arguments);
  va_end(arguments);
  return LogStep(&sink, level);
}

void log_continue(const char* format, ...) {
  LogSink& sink = log_sink();
  const std::scoped_lock hold(sink.mutex);
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(sink.scratch, sizeof sink.scratch, format, arguments);
  va_end(arguments);
  if (sink.threshold >= 0 && sink.lastLevel >= kLogError && sink.lastLevel <= sink.threshold) {
    FormatAgain(sink.scratch, sink.text);
    WriteLine(&sink, kContinuation);
  }
}

}  // namespace lx
