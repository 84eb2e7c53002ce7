// SPDX-License-Identifier: BSD-3-Clause
#define WIN32_LEAN_AND_MEAN
#define NOMINMAX
#include <windows.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <utility>

#include "host/support/locked_file.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

std::error_code Denied(const fs::path& file, LockedFile::How how) {
  if (GetFileAttributesW(file.c_str()) != INVALID_FILE_ATTRIBUTES) {
    return std::make_error_code(how == LockedFile::How::kMakeAnew ? std::errc::file_exists
                                                                  : std::errc::permission_denied);
  }
  // A name that is being removed can neither be looked at nor taken.
  return std::make_error_code(GetLastError() == ERROR_ACCESS_DENIED
                                  ? std::errc::device_or_resource_busy
                                  : std::errc::permission_denied);
}

std::error_code LastError(const fs::path& file, LockedFile::How how) {
  const DWORD error = GetLastError();
  switch (error) {
    case ERROR_FILE_EXISTS:
    case ERROR_ALREADY_EXISTS:
      return std::make_error_code(std::errc::file_exists);
    case ERROR_FILE_NOT_FOUND:
      return std::make_error_code(std::errc::no_such_file_or_directory);
    case ERROR_ACCESS_DENIED:
      return Denied(file, how);
    default:
      return {static_cast<int>(error), std::system_category()};
  }
}

OVERLAPPED At(std::uint64_t offset) {
  OVERLAPPED place{};
  place.Offset = static_cast<DWORD>(offset);
  place.OffsetHigh = static_cast<DWORD>(offset >> 32U);
  return place;
}

// A byte behind all that a file may hold: a lock here keeps others from the bytes that it covers.
constexpr std::uint64_t kLockedByte = std::uint64_t{1} << 62U;

LockAnswer Ask(HANDLE file, DWORD flags) {
  OVERLAPPED place = At(kLockedByte);
  if (LockFileEx(file, LOCKFILE_EXCLUSIVE_LOCK | flags, 0, 1, 0, &place) != 0) {
    return LockAnswer::kTaken;
  }
  const DWORD error = GetLastError();
  return error == ERROR_LOCK_VIOLATION || error == ERROR_IO_PENDING ? LockAnswer::kHeld
                                                                    : LockAnswer::kNoLocks;
}

}  // namespace

struct LockedFile::Opened {
  HANDLE file;
};

std::unique_ptr<LockedFile> LockedFile::Open(const fs::path& file, How how,
                                             std::error_code* error) {
  const DWORD disposition = how == How::kMakeAnew ? CREATE_NEW
                            : how == How::kAsItIs ? OPEN_EXISTING
                                                  : OPEN_ALWAYS;
  const DWORD flags =
      FILE_ATTRIBUTE_NORMAL | (how == How::kGoThere ? 0U : DWORD{FILE_FLAG_OPEN_REPARSE_POINT});
  const HANDLE opened = CreateFileW(file.c_str(), GENERIC_READ | GENERIC_WRITE,
                                    FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                                    disposition, flags, nullptr);
  if (opened == INVALID_HANDLE_VALUE) {
    *error = LastError(file, how);
    return nullptr;
  }
  return std::unique_ptr<LockedFile>(new LockedFile(std::make_unique<Opened>(Opened{opened})));
}

LockedFile::LockedFile(std::unique_ptr<Opened> opened) : opened_(std::move(opened)) {}

LockedFile::~LockedFile() {
  Unlock();
  CloseHandle(opened_->file);
}

LockAnswer LockedFile::TryLock() { return Ask(opened_->file, LOCKFILE_FAIL_IMMEDIATELY); }

LockAnswer LockedFile::Lock() { return Ask(opened_->file, 0); }

void LockedFile::Unlock() {
  OVERLAPPED place = At(kLockedByte);
  UnlockFileEx(opened_->file, 0, 1, 0, &place);
}

// What is removed keeps its name until the last one has closed it.
bool LockedFile::IsAt(const fs::path& file) const {
  FILE_STANDARD_INFO info{};
  if (GetFileInformationByHandleEx(opened_->file, FileStandardInfo, &info, sizeof info) == 0 ||
      info.DeletePending != 0) {
    return false;
  }
  const HANDLE named =
      CreateFileW(file.c_str(), 0, FILE_SHARE_READ | FILE_SHARE_WRITE | FILE_SHARE_DELETE, nullptr,
                  OPEN_EXISTING, FILE_FLAG_OPEN_REPARSE_POINT, nullptr);
  if (named == INVALID_HANDLE_VALUE) {
    return false;
  }
  BY_HANDLE_FILE_INFORMATION here{};
  BY_HANDLE_FILE_INFORMATION there{};
  const bool areKnown = GetFileInformationByHandle(opened_->file, &here) != 0 &&
                        GetFileInformationByHandle(named, &there) != 0;
  CloseHandle(named);
  return areKnown && here.dwVolumeSerialNumber == there.dwVolumeSerialNumber &&
         here.nFileIndexHigh == there.nFileIndexHigh && here.nFileIndexLow == there.nFileIndexLow;
}

bool LockedFile::IsRegular() const { return GetFileType(opened_->file) == FILE_TYPE_DISK; }

std::uint64_t LockedFile::Size() const {
  LARGE_INTEGER size{};
  return GetFileSizeEx(opened_->file, &size) != 0 ? static_cast<std::uint64_t>(size.QuadPart) : 0;
}

bool LockedFile::Read(std::uint64_t offset, std::string* text) const {
  text->clear();
  std::array<char, 65536> block{};
  for (;;) {
    OVERLAPPED place = At(offset + text->size());
    DWORD count = 0;
    if (ReadFile(opened_->file, block.data(), static_cast<DWORD>(block.size()), &count, &place) ==
        0) {
      return GetLastError() == ERROR_HANDLE_EOF;
    }
    if (count == 0) {
      return true;
    }
    text->append(block.data(), count);
  }
}

bool LockedFile::Append(std::string_view text) {
  while (!text.empty()) {
    constexpr std::size_t kMost = std::size_t{1} << 30U;
    OVERLAPPED place = At(Size());
    DWORD count = 0;
    if (WriteFile(opened_->file, text.data(), static_cast<DWORD>(std::min(text.size(), kMost)),
                  &count, IsRegular() ? &place : nullptr) == 0 ||
        count == 0) {
      return false;
    }
    text.remove_prefix(count);
  }
  return true;
}

bool LockedFile::Truncate(std::uint64_t size) {
  LARGE_INTEGER place{};
  place.QuadPart = static_cast<LONGLONG>(size);
  return SetFilePointerEx(opened_->file, place, nullptr, FILE_BEGIN) != 0 &&
         SetEndOfFile(opened_->file) != 0;
}

bool LockedFile::Sync() { return FlushFileBuffers(opened_->file) != 0 || !IsRegular(); }

}  // namespace glimmerhost
