// SPDX-License-Identifier: BSD-3-Clause
// The looks that come with the program, for --preset.
#pragma once

#include <filesystem>
#include <string>
#include <vector>

namespace glimmerhost {

// Throws UsageError, with the nearest name, if there is no preset of that name, and Failure if
// the program's presets are missing.
std::filesystem::path PresetFile(const std::string& name);

struct Preset {
  std::string name;
  std::string summary;  // the first comment of its file
};

// All of them, in the order of their names. Throws Failure as above.
std::vector<Preset> Presets();

}  // namespace glimmerhost
