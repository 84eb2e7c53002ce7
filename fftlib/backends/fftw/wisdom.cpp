// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/wisdom.h"

#include <cstdio>

#include "baselib/platform/platform.h"
#include "baselib/utils/directories.h"
#include "baselib/utils/paths.h"
#include "fftlib/backends/fftw/fft_calls.h"

namespace lx {
namespace {

constexpr const char* kFileName = "fftw3_wisdom_lx.dat";

using Path = char[kPathBytes];

void BuildWisdomPath(Path path) {
  const char separator[] = {GetPlatform().pathSeparator, '\0'};
  std::snprintf(path, sizeof(Path), "%s%s%s", get_standard_directory(kSettingsDirectory), separator,
                kFileName);
}

// Beside the file, under a name of this process's own.
void BuildPartPath(const Path path, char* part, std::size_t bytes) {
  std::snprintf(part, bytes, "%s.%u.part", path, GetPlatform().processId());
}

}  // namespace

bool& wisdom_folder_made() {
  static bool made = false;
  return made;
}

void MakeWisdomFolder() {
  if (!wisdom_folder_made()) {
    wisdom_folder_made() = true;
    make_standard_directories();
  }
}

bool ReadWisdomFile() {
  Path path;
  BuildWisdomPath(path);
  std::FILE* file = GetPlatform().openFile(path, "r");
  if (file == nullptr) {
    return false;
  }
  const bool read = GetFftCalls().importWisdom(file) != 0;
  GetPlatform().closeFile(file);
  return read;
}

// Another process may read or write the file at the same time, so a whole one is moved into
// its place. What a full disk has cut short stays away.
bool WriteWisdomFile() {
  const Platform& platform = GetPlatform();
  Path path;
  BuildWisdomPath(path);
  // Room for the process's number and the ending.
  char part[kPathBytes + 32];
  BuildPartPath(path, part, sizeof part);
  std::FILE* file = platform.openFile(part, "w+");
  if (file == nullptr) {
    return false;
  }
  GetFftCalls().exportWisdom(file);
  if (platform.closeFile(file) && platform.moveFile(part, path)) {
    return true;
  }
  platform.removeFile(part);
  return false;
}

}  // namespace lx
