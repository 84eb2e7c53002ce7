// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#include <windows.h>

#include "tests/support/system.h"

namespace lx_test {

// By the system alone: the C runtime's copy knows nothing of it.
void SetVariable(const char* name, const char* value) { SetEnvironmentVariableA(name, value); }
void RemoveVariable(const char* name) { SetEnvironmentVariableA(name, nullptr); }

const std::uint32_t kNoSuchFile = ERROR_FILE_NOT_FOUND;
const std::uint32_t kNoAccess = ERROR_ACCESS_DENIED;
void RaiseError(std::uint32_t error) { SetLastError(error); }

// By way of the wide form, in a buffer of the system's.
std::string SystemText(std::uint32_t error) {
  wchar_t* wide = nullptr;
  const DWORD length = FormatMessageW(
      FORMAT_MESSAGE_ALLOCATE_BUFFER | FORMAT_MESSAGE_FROM_SYSTEM | FORMAT_MESSAGE_IGNORE_INSERTS,
      nullptr, error, 0, reinterpret_cast<wchar_t*>(&wide), 0, nullptr);
  std::string text(4 * length, '\0');
  text.resize(static_cast<std::size_t>(
      WideCharToMultiByte(CP_ACP, 0, wide, static_cast<int>(length), text.data(),
                          static_cast<int>(text.size()), nullptr, nullptr)));
  LocalFree(wide);
  return text;
}

}  // namespace lx_test
