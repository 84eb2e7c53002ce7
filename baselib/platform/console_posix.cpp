// SPDX-License-Identifier: BSD-3-Clause
#include <cstdio>

#include "baselib/platform/console.h"

namespace lx::native {

bool ConsoleHasTitle() { return false; }
void ConsoleCreate() {}
bool ConsoleIgnoreBreak() { return true; }
void ConsoleSetTitle(const char* /*title*/) {}
void* ConsoleOutput() { return stderr; }
bool ConsoleRaise(const char* /*title*/) { return true; }

void ConsoleWrite(void* output, const char* text) {
  std::fputs(text, static_cast<std::FILE*>(output));
}

}  // namespace lx::native
