// SPDX-License-Identifier: BSD-3-Clause
// The platform's debug console. Where the system has no console window, the standard error stream
// takes its place.
#pragma once

namespace lx {

namespace native {

// Whether the process has a console with a title.
bool ConsoleHasTitle();

void ConsoleCreate();

// Keeps the process alive when its console is closed or interrupted. False where that cannot be.
bool ConsoleIgnoreBreak();

void ConsoleSetTitle(const char* title);
void* ConsoleOutput();  // what is written to; null where there is nothing

// Puts the window of that title above all others. False where it is not there yet.
bool ConsoleRaise(const char* title);

void ConsoleWrite(void* output, const char* text);

}  // namespace native

struct ConsoleOperations {
  decltype(native::ConsoleHasTitle)* consoleHasTitle = native::ConsoleHasTitle;
  decltype(native::ConsoleCreate)* consoleCreate = native::ConsoleCreate;
  decltype(native::ConsoleIgnoreBreak)* consoleIgnoreBreak = native::ConsoleIgnoreBreak;
  decltype(native::ConsoleSetTitle)* consoleSetTitle = native::ConsoleSetTitle;
  decltype(native::ConsoleOutput)* consoleOutput = native::ConsoleOutput;
  decltype(native::ConsoleRaise)* consoleRaise = native::ConsoleRaise;
  decltype(native::ConsoleWrite)* consoleWrite = native::ConsoleWrite;
};

}  // namespace lx
