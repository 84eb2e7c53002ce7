// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "tests/support/shared_library.h"

namespace lx_test {

void* OpenLibrary(const char* file) { return LoadLibraryA(file); }
void CloseLibrary(void* library) { FreeLibrary(static_cast<HMODULE>(library)); }
std::string LibraryError() { return "error " + std::to_string(GetLastError()); }

AnyFunction FunctionOf(void* library, const char* name) {
  return reinterpret_cast<AnyFunction>(GetProcAddress(static_cast<HMODULE>(library), name));
}

bool IsLibraryOpen(const char* file) { return GetModuleHandleA(file) != nullptr; }

}  // namespace lx_test
