// SPDX-License-Identifier: BSD-3-Clause
// The machine's persistent settings, by the keys of a registry.
//
// Texts are in the system's code page, and a 64-bit process sees the 64-bit view. A system without
// a registry has files in its place, of the form NAME=VALUE, one a line, values quoted or not:
//
//   the machine's environment   /etc/environment
//   the user's environment      *.conf in .config/environment.d of the home that the password
//                               database names, the last in the order of their names winning
//   the program files folder    /etc/vantrell.conf
#pragma once

#include <cstdint>

namespace lx {

// A place of persistent settings that has been opened. Null stands for none.
using SettingsHandle = void*;

enum class SettingsRoot { kMachine, kUser };

// Types of a setting's value that are text.
inline constexpr std::uint32_t kSettingText = 1;
inline constexpr std::uint32_t kSettingExpandable = 2;

namespace native {

SettingsHandle OpenSettings(SettingsRoot root, const char* key);

//   size    takes the bytes of the buffer and gives those of the value, 0 for none
//   type    null if it is not asked for
//   buffer  null to ask for size and type alone
bool QuerySetting(SettingsHandle settings, const char* name, std::uint32_t* type, void* buffer,
                  std::uint32_t* size);

void CloseSettings(SettingsHandle settings);

}  // namespace native

struct SettingsOperations {
  // The folder that the files above lie below. Where there is a registry it is not looked at.
  const char* settingsRoot = "";
  decltype(native::OpenSettings)* openSettings = native::OpenSettings;
  decltype(native::QuerySetting)* querySetting = native::QuerySetting;
  decltype(native::CloseSettings)* closeSettings = native::CloseSettings;
};

}  // namespace lx
