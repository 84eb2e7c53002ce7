// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#include <windows.h>
// After the system's own header.
#include <tlhelp32.h>

#include "tests/support/process_threads.h"

namespace lx_test {

int ThreadCount() {
  const HANDLE snapshot = CreateToolhelp32Snapshot(TH32CS_SNAPTHREAD, 0);
  THREADENTRY32 entry{};
  entry.dwSize = sizeof entry;
  int count = 0;
  // The snapshot is of all processes.
  for (BOOL more = Thread32First(snapshot, &entry); more != FALSE;
       more = Thread32Next(snapshot, &entry)) {
    count += entry.th32OwnerProcessID == GetCurrentProcessId() ? 1 : 0;
  }
  CloseHandle(snapshot);
  return count;
}

int ToldProcessors() {
  SYSTEM_INFO info;
  GetSystemInfo(&info);
  return static_cast<int>(info.dwNumberOfProcessors);
}

}  // namespace lx_test
