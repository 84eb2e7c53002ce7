// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/console.h"

#include <cstdarg>
#include <cstdint>
#include <cstdio>
#include <mutex>

#include "baselib/platform/platform.h"
#include "baselib/utils/log_sink.h"

namespace lx {
namespace {

constexpr const char* kTitle = "Vantrell Debug";

using Text = char[1024];

// Gives the window its handler and its title, and waits until it has taken the latter.
void CreateConsole(const Platform& platform) {
  platform.consoleCreate();
  if (!platform.consoleIgnoreBreak()) {
    console_print("failed to set console handler");
  }
  platform.consoleSetTitle(kTitle);
  constexpr std::uint32_t kMilliseconds = 40;
  platform.sleep(kMilliseconds);
}

}  // namespace

ConsoleState& console_state() {
  static constinit ConsoleState state;
  return state;
}

bool console_write(const char* text) {
  const std::scoped_lock hold(log_sink().mutex);
  const Platform& platform = GetPlatform();
  ConsoleState& console = console_state();
  if (console.output == nullptr) {
    // What creation itself has to say comes back here, and is lost.
    if (console.beingCreated) {
      return false;
    }
    console.beingCreated = true;
    CreateConsole(platform);
    console.beingCreated = false;
    console.output = platform.consoleOutput();
    if (console.output == nullptr) {
      return false;
    }
  }
  // The window may take a while to appear, so every line looks for it.
  if (!console.isTopmost) {
    console.isTopmost = platform.consoleRaise(kTitle);
  }
  platform.consoleWrite(console.output, text);
  return true;
}

void console_print(const char* format, ...) {
  Text text;
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  console_write(text);
}

void console_log(const char* format, ...) {
  Text text;
  std::va_list arguments;
  va_start(arguments, format);
  std::vsnprintf(text, sizeof text, format, arguments);
  va_end(arguments);
  const LogSink& sink = log_sink();
  {
    const std::scoped_lock hold(log_sink().mutex);
    if (sink.stream != nullptr && sink.isFile) {
      std::fprintf(sink.stream, "CONSOLE LOG:%s", text);
    }
  }
  console_write(text);
}

}  // namespace lx
