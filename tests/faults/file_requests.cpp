// SPDX-License-Identifier: BSD-3-Clause
// What opens, reads, writes, moves, removes and looks at files. A refused one does nothing, but for
// closing: the file is closed, and the system says that not all went well.
#include <dirent.h>
#include <errno.h>
#include <fcntl.h>
#include <stdarg.h>
#include <stdio.h>
#include <sys/stat.h>
#include <sys/types.h>
#include <unistd.h>

#include "tests/faults/counted_requests.h"

namespace {

using faults::IsRefused;
using faults::Kind;
using faults::Next;

constexpr int kStreamError = 0x20;  // as the C library has it

}  // namespace

// A function with a fixed list of arguments: what it answers and what errno says where it is
// refused.
#define REFUSABLE(answer, name, parameters, arguments, failed, fault) \
  __attribute__((visibility("default"))) answer name parameters {     \
    using Function = answer(*) parameters;                            \
    static Function next;                                             \
    if (IsRefused(Kind::kFiles, #name)) {                             \
      errno = fault;                                                  \
      return failed;                                                  \
    }                                                                 \
    return Next(&next, #name) arguments;                              \
  }

// One that opens, whose mode comes only where a file may be made.
#define REFUSABLE_OPEN(name, parameters, arguments)            \
  __attribute__((visibility("default"))) int name parameters { \
    using Function = int(*) parameters;                        \
    static Function next;                                      \
    if (IsRefused(Kind::kFiles, #name)) {                      \
      errno = EMFILE;                                          \
      return -1;                                               \
    }                                                          \
    va_list rest;                                              \
    va_start(rest, flags);                                     \
    const mode_t mode = va_arg(rest, mode_t);                  \
    va_end(rest);                                              \
    return Next(&next, #name) arguments;                       \
  }

extern "C" {

REFUSABLE_OPEN(open, (const char* path, int flags, ...), (path, flags, mode))
REFUSABLE_OPEN(open64, (const char* path, int flags, ...), (path, flags, mode))
REFUSABLE_OPEN(openat, (int folder, const char* path, int flags, ...), (folder, path, flags, mode))
REFUSABLE_OPEN(openat64, (int folder, const char* path, int flags, ...),
               (folder, path, flags, mode))

REFUSABLE(FILE*, fopen, (const char* path, const char* mode), (path, mode), nullptr, EMFILE)
REFUSABLE(FILE*, fopen64, (const char* path, const char* mode), (path, mode), nullptr, EMFILE)
REFUSABLE(FILE*, fdopen, (int file, const char* mode) noexcept, (file, mode), nullptr, ENOMEM)
REFUSABLE(DIR*, opendir, (const char* path), (path), nullptr, EMFILE)
REFUSABLE(DIR*, fdopendir, (int folder), (folder), nullptr, EMFILE)
REFUSABLE(ssize_t, read, (int file, void* to, size_t size), (file, to, size), -1, EIO)
REFUSABLE(ssize_t, pread, (int file, void* to, size_t size, off_t at), (file, to, size, at), -1,
          EIO)
REFUSABLE(ssize_t, pread64, (int file, void* to, size_t size, off64_t at), (file, to, size, at), -1,
          EIO)
REFUSABLE(ssize_t, write, (int file, const void* from, size_t size), (file, from, size), -1, ENOSPC)
REFUSABLE(ssize_t, pwrite, (int file, const void* from, size_t size, off_t at),
          (file, from, size, at), -1, ENOSPC)
REFUSABLE(ssize_t, pwrite64, (int file, const void* from, size_t size, off64_t at),
          (file, from, size, at), -1, ENOSPC)
REFUSABLE(off_t, lseek, (int file, off_t at, int from) noexcept, (file, at, from), -1, EIO)
REFUSABLE(off64_t, lseek64, (int file, off64_t at, int from) noexcept, (file, at, from), -1, EIO)
REFUSABLE(int, fsync, (int file), (file), -1, EIO)
REFUSABLE(int, fdatasync, (int file), (file), -1, EIO)
REFUSABLE(int, ftruncate, (int file, off_t size) noexcept, (file, size), -1, EIO)
REFUSABLE(int, ftruncate64, (int file, off64_t size) noexcept, (file, size), -1, EIO)
REFUSABLE(int, fchmod, (int file, mode_t mode) noexcept, (file, mode), -1, EPERM)
REFUSABLE(int, rename, (const char* from, const char* to) noexcept, (from, to), -1, EIO)
REFUSABLE(int, renameat2,
          (int folder, const char* from, int other, const char* to, unsigned flags) noexcept,
          (folder, from, other, to, flags), -1, EIO)
REFUSABLE(int, link, (const char* from, const char* to) noexcept, (from, to), -1, EIO)
REFUSABLE(int, unlink, (const char* path) noexcept, (path), -1, EIO)
REFUSABLE(int, unlinkat, (int folder, const char* path, int flags) noexcept, (folder, path, flags),
          -1, EIO)
REFUSABLE(int, remove, (const char* path) noexcept, (path), -1, EIO)
REFUSABLE(int, mkdir, (const char* path, mode_t mode) noexcept, (path, mode), -1, ENOSPC)
REFUSABLE(int, stat, (const char* path, struct stat* found) noexcept, (path, found), -1, EIO)
REFUSABLE(int, lstat, (const char* path, struct stat* found) noexcept, (path, found), -1, EIO)
REFUSABLE(int, fstat, (int file, struct stat* found) noexcept, (file, found), -1, EIO)
REFUSABLE(int, stat64, (const char* path, struct stat64* found) noexcept, (path, found), -1, EIO)
REFUSABLE(int, lstat64, (const char* path, struct stat64* found) noexcept, (path, found), -1, EIO)
REFUSABLE(int, fstat64, (int file, struct stat64* found) noexcept, (file, found), -1, EIO)
REFUSABLE(ssize_t, readlink, (const char* path, char* to, size_t size) noexcept, (path, to, size),
          -1, EIO)
REFUSABLE(int, fflush, (FILE * file), (file), EOF, ENOSPC)
REFUSABLE(int, fseeko, (FILE * file, off_t at, int from), (file, at, from), -1, EIO)
REFUSABLE(int, fseeko64, (FILE * file, off64_t at, int from), (file, at, from), -1, EIO)

// Those of streams leave the mark that ferror looks for.
__attribute__((visibility("default"))) size_t fread(void* to, size_t size, size_t count,
                                                    FILE* file) {
  static decltype(&fread) next;
  if (IsRefused(Kind::kFiles, "fread")) {
    file->_flags |= kStreamError;
    errno = EIO;
    return 0;
  }
  return Next(&next, "fread")(to, size, count, file);
}

__attribute__((visibility("default"))) size_t fwrite(const void* from, size_t size, size_t count,
                                                     FILE* file) {
  static decltype(&fwrite) next;
  if (IsRefused(Kind::kFiles, "fwrite")) {
    file->_flags |= kStreamError;
    errno = ENOSPC;
    return 0;
  }
  return Next(&next, "fwrite")(from, size, count, file);
}

__attribute__((visibility("default"))) int fclose(FILE* file) {
  static decltype(&fclose) next;
  const bool isRefused = IsRefused(Kind::kFiles, "fclose");
  const int closed = Next(&next, "fclose")(file);
  errno = isRefused ? ENOSPC : errno;
  return isRefused ? EOF : closed;
}

// The locks of files, and what is asked of descriptors.
__attribute__((visibility("default"))) int fcntl(int file, int command, ...) {
  static decltype(&fcntl) next;
  if (IsRefused(Kind::kFiles, "fcntl")) {
    errno = ENOLCK;
    return -1;
  }
  va_list rest;
  va_start(rest, command);
  void* const argument = va_arg(rest, void*);
  va_end(rest);
  return Next(&next, "fcntl")(file, command, argument);
}

}  // extern "C"
