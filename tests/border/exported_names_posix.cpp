// SPDX-License-Identifier: BSD-3-Clause
#include <array>
#include <cstdio>

#include "tests/border/exported_names.h"

namespace lx_test {

std::vector<std::string> ExportedNames(const char* file) {
  const std::string command =
      "nm -D --defined-only '" + std::string(file) + "' | awk '{print $3}' | LC_ALL=C sort";
  std::vector<std::string> names;
  std::array<char, 4096> line{};
  FILE* pipe = popen(command.c_str(), "r");
  while (fgets(line.data(), line.size(), pipe) != nullptr) {
    names.emplace_back(line.data());
    names.back().pop_back();  // the end of the line
  }
  pclose(pipe);
  return names;
}

}  // namespace lx_test
