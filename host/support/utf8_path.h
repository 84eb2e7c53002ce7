// SPDX-License-Identifier: BSD-3-Clause
// Names of files between texts, which are UTF-8 throughout this program, and the library's paths.
#pragma once

#include <filesystem>
#include <string>

namespace glimmerhost {

// Paths made from a plain text are of the system's own code page on Windows, and would name another
// file as soon as a letter is not ASCII. A path's string() is UTF-8 on all systems.
inline std::filesystem::path Utf8Path(const std::string& name) {
  return {std::u8string(name.begin(), name.end())};
}

}  // namespace glimmerhost
