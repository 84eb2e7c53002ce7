// SPDX-License-Identifier: BSD-3-Clause
#include <direct.h>
#include <io.h>
#include <sys/stat.h>

#include <cstdio>

#include "baselib/platform/files.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {
namespace {

bool IsProtected(const char* path) {
  const DWORD attributes = ::GetFileAttributesA(path);
  return attributes != INVALID_FILE_ATTRIBUTES && (attributes & FILE_ATTRIBUTE_READONLY) != 0;
}

}  // namespace

const char kPathSeparator = '\\';
const char* const kDefaultHome = "C:\\Program Files\\Vantrell";

bool CloseFile(std::FILE* file) {
  const bool whole = std::ferror(file) == 0;
  return std::fclose(file) == 0 && whole;
}

bool MoveOver(const char* from, const char* to) {
  return !IsProtected(to) && ::MoveFileExA(from, to, MOVEFILE_REPLACE_EXISTING) != 0;
}

void RemoveNamed(const char* path) { (void)std::remove(path); }

bool IsDirectory(const char* path) {
  struct _stat status;
  return _stat(path, &status) == 0 && (status.st_mode & _S_IFDIR) != 0;
}

bool MakeDirectory(const char* path) { return _mkdir(path) == 0; }

bool SetWritable(const char* path, bool writable) {
  return _chmod(path, writable ? _S_IREAD | _S_IWRITE : _S_IREAD) != -1;
}

}  // namespace lx::native
