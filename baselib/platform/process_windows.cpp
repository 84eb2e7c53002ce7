// SPDX-License-Identifier: BSD-3-Clause
#include <cstddef>
#include <cstdint>
#include <cstdio>

#include "baselib/platform/process.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {
namespace {

HMODULE ModuleOf(const void* address) {
  HMODULE module = nullptr;
  ::GetModuleHandleExA(
      GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_UNCHANGED_REFCOUNT,
      static_cast<LPCSTR>(address), &module);
  return module;
}

}  // namespace

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

bool KeepLoaded(void (*function)()) {
  static const char inThisModule = 0;
  const auto* address = reinterpret_cast<const void*>(function);
  if (ModuleOf(address) == ModuleOf(&inThisModule)) {
    return false;
  }
  HMODULE module = nullptr;
  return ::GetModuleHandleExA(
             GET_MODULE_HANDLE_EX_FLAG_FROM_ADDRESS | GET_MODULE_HANDLE_EX_FLAG_PIN,
             static_cast<LPCSTR>(address), &module) != 0;
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
