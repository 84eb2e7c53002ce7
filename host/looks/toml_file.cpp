// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/toml_file.h"

#include <fstream>
#include <stdexcept>

namespace glimmerhost {

// Not by the library's own opening, which takes the name in the system's code page.
toml::table ParseTomlFile(const std::filesystem::path& file) {
  std::ifstream in(file, std::ios::binary);
  if (!in || !std::filesystem::is_regular_file(file)) {
    throw std::runtime_error("it cannot be opened");
  }
  return toml::parse(in, file.string());
}

}  // namespace glimmerhost
