// SPDX-License-Identifier: BSD-3-Clause
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <array>
#include <cerrno>
#include <cstddef>
#include <cstdio>
#include <utility>

#include "host/support/failure.h"
#include "host/support/locked_file.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

int Flags(LockedFile::How how) {
  switch (how) {
    case LockedFile::How::kMakeAnew:
      return O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW;
    case LockedFile::How::kAsItIs:
      // Not to wait for whoever reads a pipe of that name.
      return O_RDWR | O_NOFOLLOW | O_NONBLOCK;
    case LockedFile::How::kGoThere:
      break;
  }
  return O_RDWR | O_CREAT;
}

// Of an opening, and not of the process, as flock() is not on every network's file systems.
LockAnswer Ask(int file, int command, short type) {
  struct flock lock {};
  lock.l_type = type;
  lock.l_whence = SEEK_SET;
  int result = 0;
  do {
    result = fcntl(file, command, &lock);
  } while (result != 0 && errno == EINTR);
  if (result == 0) {
    return LockAnswer::kTaken;
  }
  return errno == EAGAIN || errno == EACCES ? LockAnswer::kHeld : LockAnswer::kNoLocks;
}

}  // namespace

struct LockedFile::Opened {
  int file;
  // Looked at once: a pipe is written to where it is, and a file at its end.
  bool isRegular = false;
};

std::unique_ptr<LockedFile> LockedFile::Open(const fs::path& file, How how,
                                             std::error_code* error) {
  constexpr mode_t kMode = 0666;
  // Before there is a file: without memory none is left that nobody knows.
  std::unique_ptr<LockedFile> object(new LockedFile(std::make_unique<Opened>(Opened{-1, false})));
  int opened = open(file.c_str(), Flags(how) | O_CLOEXEC, kMode);
  if (opened < 0 && how == How::kGoThere) {
    // What can only be written, the end of a pipe, say.
    opened = open(file.c_str(), O_WRONLY | O_CLOEXEC);
  }
  if (opened < 0) {
    *error = {errno, std::generic_category()};
    return nullptr;
  }
  if (how == How::kMakeAnew) {
    // Whoever shares a folder may be another user, whom this one's habits would shut out.
    fchmod(opened, kMode);
  }
  object->opened_->file = opened;
  struct stat found {};
  if (fstat(opened, &found) != 0) {
    *error = {errno, std::generic_category()};
    if (how == How::kMakeAnew) {
      unlink(file.c_str());
    }
    return nullptr;
  }
  object->opened_->isRegular = S_ISREG(found.st_mode);
  return object;
}

LockedFile::LockedFile(std::unique_ptr<Opened> opened) : opened_(std::move(opened)) {}

LockedFile::~LockedFile() {
  if (opened_->file >= 0) {
    close(opened_->file);
  }
}

LockAnswer LockedFile::TryLock() { return Ask(opened_->file, F_OFD_SETLK, F_WRLCK); }

LockAnswer LockedFile::Lock() { return Ask(opened_->file, F_OFD_SETLKW, F_WRLCK); }

void LockedFile::Unlock() { Ask(opened_->file, F_OFD_SETLK, F_UNLCK); }

bool LockedFile::IsAt(const fs::path& file) const {
  struct stat here {};
  struct stat there {};
  return fstat(opened_->file, &here) == 0 && lstat(file.c_str(), &there) == 0 &&
         here.st_dev == there.st_dev && here.st_ino == there.st_ino;
}

bool LockedFile::IsRegular() const { return opened_->isRegular; }

std::uint64_t LockedFile::Size() const {
  struct stat found {};
  if (fstat(opened_->file, &found) != 0) {
    throw Failure("a file that is open cannot be looked at");
  }
  return static_cast<std::uint64_t>(found.st_size);
}

bool LockedFile::Read(std::uint64_t offset, std::string* text) const {
  text->clear();
  std::array<char, 65536> block{};
  for (;;) {
    const ssize_t count =
        pread(opened_->file, block.data(), block.size(), static_cast<off_t>(offset + text->size()));
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      return count == 0;
    }
    text->append(block.data(), static_cast<std::size_t>(count));
  }
}

bool LockedFile::Append(std::string_view text) {
  if (IsRegular() && lseek(opened_->file, 0, SEEK_END) < 0) {
    return false;
  }
  while (!text.empty()) {
    const ssize_t count = write(opened_->file, text.data(), text.size());
    if (count < 0 && errno == EINTR) {
      continue;
    }
    if (count <= 0) {
      return false;
    }
    text.remove_prefix(static_cast<std::size_t>(count));
  }
  return true;
}

bool LockedFile::Truncate(std::uint64_t size) {
  return ftruncate(opened_->file, static_cast<off_t>(size)) == 0;
}

bool LockedFile::Sync() {
  return fsync(opened_->file) == 0 || errno == EINVAL || errno == ENOTSUP || errno == EROFS;
}

}  // namespace glimmerhost
