// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/presets.h"

#include <algorithm>
#include <fstream>
#include <system_error>

#include "host/support/failure.h"
#include "host/support/nearest.h"
#include "host/support/system.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr const char* kEnding = ".toml";

fs::path Folder() { return (ProgramFolder() / GLIMMERHOST_PRESET_FOLDER).lexically_normal(); }

std::vector<std::string> Names() {
  std::error_code error;
  std::vector<std::string> names;
  for (const fs::directory_entry& entry : fs::directory_iterator(Folder(), error)) {
    if (entry.path().extension() == kEnding) {
      names.push_back(entry.path().stem().string());
    }
  }
  if (names.empty()) {
    throw Failure(Folder().string() + ": the program's presets are missing");
  }
  std::sort(names.begin(), names.end());
  return names;
}

fs::path FileOf(const std::string& name) { return Folder() / Utf8Path(name + kEnding); }

std::string FirstComment(const fs::path& file) {
  std::ifstream in(file);
  std::string line;
  std::getline(in, line);
  line.erase(0, line.find_first_not_of("# "));
  line.erase(line.find_last_not_of(" \r") + 1);
  return line;
}

}  // namespace

// By the list: a name of another form, ../film say, is none of them.
fs::path PresetFile(const std::string& name) {
  const std::vector<std::string> names = Names();
  if (std::find(names.begin(), names.end(), name) == names.end()) {
    throw UnknownName("preset", name, names);
  }
  return FileOf(name);
}

std::vector<Preset> Presets() {
  std::vector<Preset> presets;
  for (const std::string& name : Names()) {
    presets.push_back({name, FirstComment(FileOf(name))});
  }
  return presets;
}

}  // namespace glimmerhost
