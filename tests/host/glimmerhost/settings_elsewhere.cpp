// SPDX-License-Identifier: BSD-3-Clause
// Loaded into the program before everything else, so that a test can give it machine settings:
// files of /etc are opened below the folder that SETTINGS_ELSEWHERE names.
#include <dlfcn.h>

#include <cstdio>
#include <cstdlib>
#include <string>

namespace {

using Open = std::FILE* (*)(const char*, const char*);

std::FILE* OpenElsewhere(const char* function, const char* path, const char* mode) {
  const auto open = reinterpret_cast<Open>(dlsym(RTLD_NEXT, function));
  const char* folder = std::getenv("SETTINGS_ELSEWHERE");
  const std::string name = path;
  if (folder != nullptr && (name == "/etc/environment" || name == "/etc/vantrell.conf")) {
    return open((folder + name).c_str(), mode);
  }
  return open(path, mode);
}

}  // namespace

extern "C" {

__attribute__((visibility("default"))) std::FILE* fopen(const char* path, const char* mode) {
  return OpenElsewhere("fopen", path, mode);
}

__attribute__((visibility("default"))) std::FILE* fopen64(const char* path, const char* mode) {
  return OpenElsewhere("fopen64", path, mode);
}

}  // extern "C"
