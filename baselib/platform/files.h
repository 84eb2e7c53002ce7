// SPDX-License-Identifier: BSD-3-Clause
// The platform's files and directories.
#pragma once

#include <cstdio>

namespace lx {

namespace native {

// What parts the components of a path, and the home directory where no setting names one.
extern const char kPathSeparator;
extern const char* const kDefaultHome;

// False if anything of what was written was lost.
bool CloseFile(std::FILE* file);

// Replaces an existing file, unless this process may not read and write it.
bool MoveOver(const char* from, const char* to);

void RemoveNamed(const char* path);

bool IsDirectory(const char* path);
bool MakeDirectory(const char* path);
bool SetWritable(const char* path, bool writable);  // by its owner

}  // namespace native

struct FileOperations {
  char pathSeparator = native::kPathSeparator;
  const char* defaultHome = native::kDefaultHome;
  std::FILE* (*openFile)(const char* path, const char* mode) = std::fopen;
  decltype(native::CloseFile)* closeFile = native::CloseFile;
  decltype(native::MoveOver)* moveFile = native::MoveOver;
  decltype(native::RemoveNamed)* removeFile = native::RemoveNamed;
  decltype(native::IsDirectory)* isDirectory = native::IsDirectory;
  decltype(native::MakeDirectory)* makeDirectory = native::MakeDirectory;
  decltype(native::SetWritable)* setWritable = native::SetWritable;
};

}  // namespace lx
