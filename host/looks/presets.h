// The parameter files that come with the program, for --preset.
#pragma once

#include <filesystem>
#include <ostream>
#include <string>

namespace glimmerhost {

// Throws UsageError, with the nearest name, if there is no preset of that name, and Failure if
// the program's presets are missing.
std::filesystem::path PresetFile(const std::string& name);

// Their names, in order, each with the first comment of its file.
void RunPresets(std::ostream& out);

}  // namespace glimmerhost
