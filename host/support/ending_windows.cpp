// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include "host/support/child_process.h"
#include "host/support/ending.h"
#include "host/support/temporary_file.h"

namespace glimmerhost {
namespace {

// The system calls it on a thread of its own. Open files go when the process has ended.
BOOL WINAPI OnConsole(DWORD /*event*/) {
  EndChildren();
  AbandonTemporaryFiles();
  constexpr UINT kInterrupted = 130;
  TerminateProcess(GetCurrentProcess(), kInterrupted);
  return TRUE;
}

}  // namespace

void EndOnSignals() { SetConsoleCtrlHandler(OnConsole, TRUE); }

}  // namespace glimmerhost
