// SPDX-License-Identifier: BSD-3-Clause
// The commands that a page of the documents tells a person to type.
#pragma once

#include <filesystem>
#include <fstream>
#include <string>

#include "tests/support/scratch_folder.h"

namespace host_test {

// The commands of a page's section, which are its indented lines.
inline std::string CommandsOf(const std::string& page, const std::string& section) {
  std::ifstream in(std::filesystem::path(SOURCES) / page);
  std::string commands;
  bool isWithin = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("#")) {
      isWithin = line.ends_with(" " + section);
    } else if (isWithin && line.starts_with("    ")) {
      commands += line.substr(4) + "\n";
    }
  }
  return commands;
}

// As a clone would be, with the program built.
inline void FillClone(const lx_test::ScratchFolder& clone) {
  std::filesystem::create_directory(clone / "scripts");
  std::filesystem::create_symlink(PROGRAM, clone / "scripts/glimmerhost");
  for (const char* folder : {"examples", "docs"}) {
    std::filesystem::create_directory_symlink(std::filesystem::path(SOURCES) / folder,
                                              clone / folder);
  }
}

// For a shell, which stops at the first command that fails.
inline void WriteScript(const lx_test::ScratchFolder& clone, const std::string& commands) {
  std::ofstream(clone / "commands") << "set -eo pipefail\ncd '" << clone.Path().string() << "'\n"
                                    << commands;
}

}  // namespace host_test
