// SPDX-License-Identifier: BSD-3-Clause
// Settings, directories and their paths as a test wants them, recorded.
#pragma once

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <map>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "baselib/platform/platform.h"
#include "tests/support/fresh_services.h"

namespace lx_test {

// In force for the length of a scope, one at a time.
class SettingsRecorder {
 public:
  struct Setting {
    std::string bytes;  // with a terminating zero, if it has one
    std::uint32_t type = lx::kSettingText;
  };

  //   separator  '\\' for the one form of paths, '/' for the other
  explicit SettingsRecorder(char separator) : table_(lx::SystemPlatform()), scope_(&table_) {
    state() = {};
    table_.pathSeparator = separator;
    table_.defaultHome = separator == '/' ? "/opt/Vantrell" : "C:\\Program Files\\Vantrell";
    table_.openSettings = [](lx::SettingsRoot root, const char* key) -> lx::SettingsHandle {
      const std::string name =
          (root == lx::SettingsRoot::kMachine ? "machine " : "user ") + std::string(key);
      state().calls.push_back("open " + name);
      const auto found = state().keys.find(name);
      return found == state().keys.end() ? nullptr : &found->second;
    };
    table_.querySetting = [](lx::SettingsHandle settings, const char* name, std::uint32_t* type,
                             void* buffer, std::uint32_t* size) {
      state().calls.push_back(std::string(buffer == nullptr ? "size of " : "read ") + name);
      const auto& values = *static_cast<std::map<std::string, Setting>*>(settings);
      const auto found = values.find(name);
      if (found == values.end()) {
        *size = 0;
        return false;
      }
      if (type != nullptr) {
        *type = found->second.type;
      }
      const std::uint32_t room = *size;
      *size = static_cast<std::uint32_t>(found->second.bytes.size());
      if (buffer != nullptr) {
        std::memcpy(buffer, found->second.bytes.data(), std::min(room, *size));
      }
      return true;
    };
    table_.closeSettings = [](lx::SettingsHandle) { state().calls.emplace_back("close"); };
    table_.isDirectory = [](const char* path) { return state().directories.count(path) != 0; };
    table_.makeDirectory = [](const char* path) {
      state().calls.push_back(std::string("make ") + path);
      const bool made = state().refused != path;
      if (made) {
        state().directories.insert(path);
      }
      return made;
    };
    table_.setWritable = [](const char* path, bool writable) {
      state().calls.push_back(std::string(writable ? "writable " : "read-only ") + path);
      return true;
    };
  }

  void SetHome(const std::string& value) {
    state().keys[kMachineEnvironment]["LX_HOME_DIR"] = {value + '\0', lx::kSettingText};
  }
  void SetProgramFiles(const std::string& value) {
    state().keys[kPrograms]["ProgramFilesDir"] = {value + '\0', lx::kSettingText};
  }

  std::vector<std::string> Calls() { return std::exchange(state().calls, {}); }

  static constexpr const char* kMachineEnvironment =
      "machine SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";
  static constexpr const char* kPrograms = "machine SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

  struct State {
    std::map<std::string, std::map<std::string, Setting>> keys;
    std::set<std::string> directories;
    std::string refused;  // a directory that cannot be made
    std::vector<std::string> calls;
  };
  // The table holds plain functions, so what they keep stands here.
  static State& state() {
    static State kept;
    return kept;
  }

 private:
  FreshServices fresh_;
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

}  // namespace lx_test
