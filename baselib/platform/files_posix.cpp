// SPDX-License-Identifier: BSD-3-Clause
#include <sys/stat.h>
#include <unistd.h>

#include <cstdio>

#include "baselib/platform/files.h"

namespace lx::native {
namespace {

// The right to rename is the folder's; whether a file may be replaced is asked of the file. The
// mode speaks to the administrator too, who could write everything.
bool IsProtected(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 &&
         ((status.st_mode & 0222) == 0 || access(path, R_OK | W_OK) != 0);
}

}  // namespace

const char kPathSeparator = '/';
const char* const kDefaultHome = "/opt/Vantrell";

bool CloseFile(std::FILE* file) {
  const bool whole = std::ferror(file) == 0;
  return std::fclose(file) == 0 && whole;
}

bool MoveOver(const char* from, const char* to) {
  return !IsProtected(to) && std::rename(from, to) == 0;
}

void RemoveNamed(const char* path) { (void)std::remove(path); }

bool IsDirectory(const char* path) {
  struct stat status;
  return stat(path, &status) == 0 && S_ISDIR(status.st_mode);
}

bool MakeDirectory(const char* path) { return mkdir(path, 0777) == 0; }

// Only the bits for reading and writing: a directory needs its others to be entered.
bool SetWritable(const char* path, bool writable) {
  struct stat status;
  if (stat(path, &status) != 0) {
    return false;
  }
  constexpr mode_t kOwner = S_IRUSR | S_IWUSR;
  constexpr mode_t kAnyWrite = S_IWUSR | S_IWGRP | S_IWOTH;
  const mode_t mode = status.st_mode & 07777;
  return chmod(path, writable ? mode | kOwner : mode & ~kAnyWrite) == 0;
}

}  // namespace lx::native
