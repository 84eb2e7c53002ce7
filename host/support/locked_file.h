// SPDX-License-Identifier: BSD-3-Clause
// LockedFile: an open file that programs on several machines take turns with.
//
// The lock belongs to the opening and not to the process: two openings exclude each other within
// one program too, and the system frees it however a program ends. It is by the file itself,
// whichever mount the folder is reached by. One source a system defines it.
#pragma once

#include <cstdint>
#include <filesystem>
#include <memory>
#include <string>
#include <string_view>
#include <system_error>

namespace glimmerhost {

// What becomes of a try for the lock.
enum class LockAnswer {
  kTaken,
  kHeld,     // by another opening
  kNoLocks,  // the file system knows none
};

class LockedFile {
 public:
  enum class How {
    kMakeAnew,  // std::errc::file_exists if there is anything of that name, a link too
    kAsItIs,    // an existing file of that very name: a link is refused
    kGoThere,   // links are followed, and what is missing is made
  };

  // Opens a file for reading and writing. What is made anew, anybody may open who may enter the
  // folder. Null, with the reason in error, where that cannot be:
  // std::errc::device_or_resource_busy for a name that is being removed and will be free at once.
  static std::unique_ptr<LockedFile> Open(const std::filesystem::path& file, How how,
                                          std::error_code* error);

  // Closes it, and with it gives up the lock.
  ~LockedFile();
  LockedFile(const LockedFile&) = delete;
  LockedFile& operator=(const LockedFile&) = delete;

  LockAnswer TryLock();

  // Waits for the lock; never kHeld. Only for locks that are held for a moment.
  LockAnswer Lock();

  void Unlock();

  // Whether the name still leads to this file: another program may have removed it before the lock
  // was taken.
  bool IsAt(const std::filesystem::path& file) const;

  // Whether it has an end that can be asked for: a pipe or a device has none.
  bool IsRegular() const;

  // Throws Failure, which names no file, where the system does not say.
  std::uint64_t Size() const;

  // All from an offset on; false if it cannot be read.
  bool Read(std::uint64_t offset, std::string* text) const;

  // At its end, at once. False if the disk is full, say.
  bool Append(std::string_view text);

  bool Truncate(std::uint64_t size);

  // Comes back when all is on the disk. What a system cannot sync is none of its errors.
  bool Sync();

 private:
  struct Opened;

  explicit LockedFile(std::unique_ptr<Opened> opened);

  std::unique_ptr<Opened> opened_;
};

}  // namespace glimmerhost
