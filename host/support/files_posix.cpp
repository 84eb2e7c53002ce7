// SPDX-License-Identifier: BSD-3-Clause
#include <fcntl.h>
#include <sys/stat.h>
#include <unistd.h>

#include <cerrno>

#include "host/support/files.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

std::error_code LastError() { return {errno, std::generic_category()}; }

std::error_code Sync(const fs::path& path, int flags) {
  const int file = open(path.c_str(), flags | O_CLOEXEC);
  if (file < 0) {
    return LastError();
  }
  const std::error_code error = fsync(file) == 0 ? std::error_code() : LastError();
  close(file);
  // Of a file system that does not know how.
  return error == std::errc::invalid_argument || error == std::errc::not_supported
             ? std::error_code()
             : error;
}

// Of file systems that know no other way. Between the two steps the name may be taken.
std::error_code MoveToFreeName(const fs::path& file, const fs::path& to) {
  struct stat found {};
  if (lstat(to.c_str(), &found) == 0) {
    return std::make_error_code(std::errc::file_exists);
  }
  return rename(file.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
}

// A second name is refused where there is one already.
std::error_code MoveByLink(const fs::path& file, const fs::path& to) {
  if (link(file.c_str(), to.c_str()) != 0) {
    const bool unknown =
        errno == EPERM || errno == ENOSYS || errno == EOPNOTSUPP || errno == EMLINK;
    return unknown ? MoveToFreeName(file, to) : LastError();
  }
  return unlink(file.c_str()) == 0 ? std::error_code() : LastError();
}

}  // namespace

std::FILE* OpenFile(const fs::path& file, FileUse use) noexcept {
  if (use == FileUse::kRead) {
    return std::fopen(file.c_str(), "rbe");
  }
  constexpr mode_t kAllowed = 0666;  // by the person's mask
  const int made = open(file.c_str(), O_RDWR | O_CREAT | O_EXCL | O_NOFOLLOW | O_CLOEXEC, kAllowed);
  std::FILE* const stream = made < 0 ? nullptr : fdopen(made, "w+b");
  if (made >= 0 && stream == nullptr) {
    close(made);
  }
  return stream;
}

bool SeekFile(std::FILE* file, std::int64_t offset, int from) noexcept {
  return fseeko(file, offset, from) == 0;
}

std::int64_t TellFile(std::FILE* file) noexcept { return ftello(file); }

std::error_code SyncFile(const fs::path& file) noexcept { return Sync(file, O_RDONLY); }

std::error_code SyncFolder(const fs::path& folder) noexcept {
  const std::error_code error = Sync(folder, O_RDONLY | O_DIRECTORY);
  // One may write to a folder and not read it.
  return error == std::errc::permission_denied ? std::error_code() : error;
}

std::error_code MoveFileTo(const fs::path& file, const fs::path& to, bool replace) noexcept {
  if (replace) {
    return rename(file.c_str(), to.c_str()) == 0 ? std::error_code() : LastError();
  }
  if (renameat2(AT_FDCWD, file.c_str(), AT_FDCWD, to.c_str(), RENAME_NOREPLACE) == 0) {
    return {};
  }
  return errno == EINVAL || errno == ENOSYS ? MoveByLink(file, to) : LastError();
}

}  // namespace glimmerhost
