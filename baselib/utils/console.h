// SPDX-License-Identifier: BSD-3-Clause
// The debug console: a window of its own. It opens with the first line to show and is never
// closed. Where there are no such windows, its lines go to the standard error stream.
#pragma once

namespace lx {

// Formats a text of at most 1023 characters and writes it to the console.
void console_print(const char* format, ...) __attribute__((format(printf, 1, 2)));

// The same, and first into the log's file, if it has one.
void console_log(const char* format, ...) __attribute__((format(printf, 1, 2)));

// False where there is no console to write to; the next text tries again.
bool console_write(const char* text);

// What the console keeps. For tests that want to begin anew.
struct ConsoleState {
  void* output = nullptr;
  bool isTopmost = false;
  bool beingCreated = false;
};
ConsoleState& console_state();

}  // namespace lx
