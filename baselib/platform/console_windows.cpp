// SPDX-License-Identifier: BSD-3-Clause
#include <cstring>

#include "baselib/platform/console.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {
namespace {

// Every event counts as dealt with, the closing of the window too.
BOOL WINAPI KeepRunning(DWORD /*event*/) { return TRUE; }

// The system would call on, into code that is gone.
struct HandlerGoesAtUnload {
  ~HandlerGoesAtUnload() { ::SetConsoleCtrlHandler(KeepRunning, FALSE); }
};

}  // namespace

bool ConsoleHasTitle() {
  char title[128];
  return ::GetConsoleTitleA(title, sizeof title) > 0;
}

// Fails where the process has a console already, which then serves.
void ConsoleCreate() { ::AllocConsole(); }

bool ConsoleIgnoreBreak() {
  static const HandlerGoesAtUnload atUnload;
  return ::SetConsoleCtrlHandler(KeepRunning, TRUE) != 0;
}

void ConsoleSetTitle(const char* title) { ::SetConsoleTitleA(title); }

void* ConsoleOutput() {
  const HANDLE output = ::GetStdHandle(STD_OUTPUT_HANDLE);
  return output == INVALID_HANDLE_VALUE ? nullptr : output;
}

bool ConsoleRaise(const char* title) {
  const HWND window = ::FindWindowA(nullptr, title);
  if (window == nullptr) {
    return false;
  }
  ::SetWindowPos(window, HWND_TOPMOST, 0, 0, 0, 0, SWP_NOSIZE | SWP_NOMOVE);
  return true;
}

void ConsoleWrite(void* output, const char* text) {
  DWORD written = 0;
  ::WriteConsoleA(output, text, static_cast<DWORD>(std::strlen(text)), &written, nullptr);
}

}  // namespace lx::native
