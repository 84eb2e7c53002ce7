// SPDX-License-Identifier: BSD-3-Clause
// The module's file that the tests are about, by its engine.
#pragma once

#include <cstdlib>
#include <filesystem>
#include <string>

namespace lx_test {

// MODULE_ENGINE of the environment, which the tests are registered with once for each engine; exact
// without one.
inline std::string ModuleEngine() {
  const char* engine = std::getenv("MODULE_ENGINE");
  return engine != nullptr ? engine : "exact";
}

inline const char* ModuleFile() {
  static const std::string file = [] {
    const std::filesystem::path exact(EXACT_MODULE_FILE);
    const std::string engine = ModuleEngine();
    return (engine == "exact" ? exact : exact.parent_path() / engine / exact.filename()).string();
  }();
  return file.c_str();
}

}  // namespace lx_test
