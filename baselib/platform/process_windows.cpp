// SPDX-License-Identifier: BSD-3-Clause
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "baselib/platform/process.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {

std::int32_t ProcessorCount() {
  SYSTEM_INFO info;
  ::GetSystemInfo(&info);
  return static_cast<std::int32_t>(info.dwNumberOfProcessors);
}

std::uint32_t ProcessId() { return ::GetCurrentProcessId(); }

// Not the C runtime's copy, which leaves out empty variables and may be old.
bool HasEnvironmentVariable(const char* name) {
  return ::GetEnvironmentVariableA(name, nullptr, 0) != 0 ||
         ::GetLastError() != ERROR_ENVVAR_NOT_FOUND;
}

std::uint32_t LastError() { return ::GetLastError(); }

// The system refuses a buffer that is too small. A text cut short says more than none.
void ErrorText(std::uint32_t error, char* text, std::size_t size) {
  constexpr DWORD kFlags = FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS;
  constexpr DWORD kLanguage = MAKELANGID(LANG_NEUTRAL, SUBLANG_DEFAULT);
  char whole[2048] = {};
  ::FormatMessageA(kFlags, nullptr, error, kLanguage, whole, sizeof whole, nullptr);
  std::snprintf(text, size, "%s", whole);
}

}  // namespace lx::native
