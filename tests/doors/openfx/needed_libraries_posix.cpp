// SPDX-License-Identifier: BSD-3-Clause
#include <array>
#include <cstdio>

#include "tests/doors/openfx/needed_libraries.h"

namespace lx_test {

// The C library's own.
std::vector<std::string> ForeignLibraries(const std::string& file) {
  const std::string command = "objdump -p '" + file +
                              "' | awk '$1 == \"NEEDED\" {print $2}' |"
                              " grep -vE '^(libc|libm|libdl|libpthread|ld-linux-.*)[.]so[.]'";
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
