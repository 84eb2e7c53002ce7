// SPDX-License-Identifier: BSD-3-Clause
#include <algorithm>
#include <set>

#include "tests/border/dll_image.h"
#include "tests/doors/openfx/needed_libraries.h"

namespace lx_test {

std::vector<std::string> ForeignLibraries(const std::string& file) {
  const std::set<std::string> system{"ADVAPI32.dll", "KERNEL32.dll", "USER32.dll", "msvcrt.dll"};
  std::vector<std::string> names = DllImage(file.c_str()).ImportedLibraries();
  std::erase_if(names, [&](const std::string& name) { return system.contains(name); });
  return names;
}

}  // namespace lx_test
