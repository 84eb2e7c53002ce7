// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/directories.h"

#include <cstdio>
#include <cstring>

#include "baselib/platform/platform.h"
#include "baselib/utils/log.h"
#include "baselib/utils/paths.h"
#include "baselib/winbits/registry.h"

namespace lx {
namespace {

constexpr const char* kHomeVariable = "LX_HOME_DIR";
constexpr const char* kMachineEnvironment =
    "SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";
constexpr const char* kUserEnvironment = "Environment";
constexpr const char* kProgramFilesKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
constexpr const char* kProgramFilesValue = "ProgramFilesDir";
constexpr const char* kFolder = "Vantrell";

// A directory below home, with the separator before its name.
void BuildBelow(char* path, const char* home, const char* name) {
  const char separator[] = {GetPlatform().pathSeparator, '\0'};
  std::snprintf(path, kPathBytes, "%s%s%s", home, separator, name);
}

}  // namespace

const char* get_home_directory() {
  static char home[kPathBytes];
  const Platform& platform = GetPlatform();
  if (const char* setting = get_environment_setting(kHomeVariable, true)) {
    std::snprintf(home, sizeof home, "%s", setting);
  } else {
    // Intended: the block is not given back.
    const char* programs = get_registry_string(kProgramFilesKey, kProgramFilesValue);
    if (programs == nullptr) {
      log_message(kLogTrace, "get_home_directory() is returning utils.h hardwired DEFAULT: %s\n",
                  platform.defaultHome);
      return platform.defaultHome;
    }
    log_message(kLogTrace,
                "No LX_HOME_DIR: get_home_directory() got Registry ProgramFilesDir entry: %s\n",
                programs);
    BuildBelow(home, programs, kFolder);
  }
  const std::size_t length = std::strlen(home);
  if (length > 0 && home[length - 1] == platform.pathSeparator) {
    home[length - 1] = '\0';
  }
  log_message(kLogTrace, "get_home_directory() is returning: %s\n", home);
  return home;
}

const char* get_standard_directory(std::uint32_t number) {
  static char path[kPathBytes];
  const char* home = get_home_directory();
  switch (number) {
    case kHomeDirectory:
      std::snprintf(path, sizeof path, "%s", home);
      break;
    case kSettingsDirectory:
      BuildBelow(path, home, "Settings");
      break;
    case kLogsDirectory:
      BuildBelow(path, home, "Logs");
      break;
    default:
      std::snprintf(path, sizeof path, " ");
      break;
  }
  log_message(kLogTrace, "get_standard_directory(%d) is returning: %s\n", static_cast<int>(number),
              path);
  return path;
}

const char* get_environment_setting(const char* name, bool machine) {
  constexpr std::uint32_t kBytes = 1024;
  static char value[kBytes];
  const Platform& platform = GetPlatform();
  SettingsHandle settings =
      platform.openSettings(machine ? SettingsRoot::kMachine : SettingsRoot::kUser,
                            machine ? kMachineEnvironment : kUserEnvironment);
  if (settings == nullptr) {
    return nullptr;
  }
  std::uint32_t size = 0;
  platform.querySetting(settings, name, nullptr, nullptr, &size);
  // One byte of the buffer is kept for the end.
  if (size == 0 || size >= kBytes) {
    platform.closeSettings(settings);
    return nullptr;
  }
  // A stored value need not end in a zero.
  std::memset(value, 0, sizeof value);
  platform.querySetting(settings, name, nullptr, value, &size);
  platform.closeSettings(settings);
  return value;
}

std::int32_t make_standard_directories() {
  constexpr std::uint32_t kAll[] = {kHomeDirectory, kSettingsDirectory, kLogsDirectory};
  for (const std::uint32_t number : kAll) {
    if (make_directory_path(get_standard_directory(number)) == 0) {
      return 0;
    }
  }
  for (const std::uint32_t number : kAll) {
    set_file_writable(get_standard_directory(number), true);
  }
  return 1;
}

}  // namespace lx
