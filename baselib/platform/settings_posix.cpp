// SPDX-License-Identifier: BSD-3-Clause
#include <pwd.h>
#include <unistd.h>

#include <algorithm>
#include <cstring>
#include <filesystem>
#include <fstream>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/platform/settings.h"

namespace lx::native {
namespace {

namespace fs = std::filesystem;

// A place of settings. Handles point at one of these, so a handle left open costs nothing.
struct Place {
  SettingsRoot root;
  const char* key;
  fs::path (*path)();  // a file, or a folder of files
};

fs::path Below(const std::string& path) { return GetPlatform().settingsRoot + path; }

fs::path MachineEnvironment() { return Below("/etc/environment"); }
fs::path Programs() { return Below("/etc/vantrell.conf"); }

// By the user's entry and not by a variable: settings of a shell alone have no effect.
fs::path UserEnvironment() {
  const passwd* user = getpwuid(getuid());
  const std::string home = user != nullptr ? user->pw_dir : "";
  return Below(home + "/.config/environment.d");
}

const Place kPlaces[] = {
    {SettingsRoot::kMachine, "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment",
     MachineEnvironment},
    {SettingsRoot::kUser, "Environment", UserEnvironment},
    {SettingsRoot::kMachine, "SOFTWARE\\Microsoft\\Windows\\CurrentVersion", Programs},
};

std::vector<fs::path> Files(const fs::path& path) {
  std::error_code error;
  if (!fs::is_directory(path, error)) {
    return {path};
  }
  std::vector<fs::path> files;
  for (const fs::directory_entry& entry : fs::directory_iterator(path, error)) {
    if (entry.path().extension() == ".conf") {
      files.push_back(entry.path());
    }
  }
  std::sort(files.begin(), files.end());
  return files;
}

std::string Trimmed(const std::string& text) {
  constexpr const char* kBlanks = " \t\r";
  const std::size_t first = text.find_first_not_of(kBlanks);
  return first == std::string::npos
             ? ""
             : text.substr(first, text.find_last_not_of(kBlanks) + 1 - first);
}

std::string Unquoted(const std::string& text) {
  const bool quoted = text.size() >= 2 && (text.front() == '"' || text.front() == '\'') &&
                      text.back() == text.front();
  return quoted ? text.substr(1, text.size() - 2) : text;
}

std::optional<std::string> Find(const Place& place, const char* name) {
  std::optional<std::string> value;
  for (const fs::path& file : Files(place.path())) {
    std::ifstream in(file);
    for (std::string line; std::getline(in, line);) {
      const std::size_t equals = line.find('=');
      if (equals != std::string::npos && Trimmed(line.substr(0, equals)) == name) {
        value = Unquoted(Trimmed(line.substr(equals + 1)));
      }
    }
  }
  return value;
}

}  // namespace

SettingsHandle OpenSettings(SettingsRoot root, const char* key) {
  for (const Place& place : kPlaces) {
    std::error_code error;
    if (place.root == root && std::strcmp(place.key, key) == 0 && fs::exists(place.path(), error)) {
      return const_cast<Place*>(&place);
    }
  }
  return nullptr;
}

bool QuerySetting(SettingsHandle settings, const char* name, std::uint32_t* type, void* buffer,
                  std::uint32_t* size) {
  const auto value = Find(*static_cast<const Place*>(settings), name);
  if (!value) {
    *size = 0;
    return false;
  }
  if (type != nullptr) {
    *type = kSettingText;
  }
  const std::uint32_t room = *size;
  *size = static_cast<std::uint32_t>(value->size() + 1);
  if (buffer == nullptr) {
    return true;
  }
  if (room < *size) {
    return false;
  }
  std::memcpy(buffer, value->c_str(), *size);
  return true;
}

void CloseSettings(SettingsHandle /*settings*/) {}

}  // namespace lx::native
