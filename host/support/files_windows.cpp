// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <fcntl.h>
#include <io.h>
#include <windows.h>

#include "host/support/files.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

std::error_code LastError() { return {static_cast<int>(GetLastError()), std::system_category()}; }

}  // namespace

// Not by the C library's own opening: it lets nobody remove an open file.
std::FILE* OpenFile(const fs::path& file, FileUse use) noexcept {
  const bool read = use == FileUse::kRead;
  const HANDLE handle =
      CreateFileW(file.c_str(), read ? GENERIC_READ : GENERIC_READ | GENERIC_WRITE,
                  FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  read ? OPEN_EXISTING : CREATE_NEW, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return nullptr;
  }
  const int number = _open_osfhandle(reinterpret_cast<std::intptr_t>(handle),
                                     _O_BINARY | (read ? _O_RDONLY : _O_RDWR));
  if (number < 0) {
    CloseHandle(handle);
    return nullptr;
  }
  std::FILE* const opened = _fdopen(number, read ? "rb" : "w+b");
  if (opened == nullptr) {
    _close(number);
  }
  return opened;
}

bool SeekFile(std::FILE* file, std::int64_t offset, int from) noexcept {
  return _fseeki64(file, offset, from) == 0;
}

std::int64_t TellFile(std::FILE* file) noexcept { return _ftelli64(file); }

std::error_code SyncFile(const fs::path& file) noexcept {
  const HANDLE handle = CreateFileW(file.c_str(), GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    OPEN_EXISTING, FILE_ATTRIBUTE_NORMAL, nullptr);
  if (handle == INVALID_HANDLE_VALUE) {
    return LastError();
  }
  const std::error_code error = FlushFileBuffers(handle) != 0 ? std::error_code() : LastError();
  CloseHandle(handle);
  return error;
}

// Names are on the disk when a file has been moved through to it.
std::error_code SyncFolder(const fs::path& /*folder*/) noexcept { return {}; }

std::error_code MoveFileTo(const fs::path& file, const fs::path& to, bool replace) noexcept {
  const DWORD how = MOVEFILE_WRITE_THROUGH | (replace ? DWORD{MOVEFILE_REPLACE_EXISTING} : 0U);
  if (MoveFileExW(file.c_str(), to.c_str(), how) != 0) {
    return {};
  }
  const DWORD error = GetLastError();
  return error == ERROR_ALREADY_EXISTS || error == ERROR_FILE_EXISTS
             ? std::make_error_code(std::errc::file_exists)
             : LastError();
}

}  // namespace glimmerhost
