// The machine's settings, as the platform's table has them.
//
// A system with a registry is asked for it: texts are in the system's code page, and a 64-bit
// process sees the 64-bit view. Elsewhere files of the form NAME=VALUE take its place, one a line,
// values quoted or not, all of them below the table's settingsRoot:
//
//   the machine's environment   /etc/environment
//   the user's environment      *.conf in .config/environment.d of the home that the password
//                               database names, the last in the order of their names winning
//   the program files folder    /etc/vantrell.conf
#pragma once

#include <cstdint>

#include "baselib/platform/platform.h"

namespace lx::native {

SettingsHandle OpenSettings(SettingsRoot root, const char* key);
bool QuerySetting(SettingsHandle settings, const char* name, std::uint32_t* type, void* buffer,
                  std::uint32_t* size);
void CloseSettings(SettingsHandle settings);

}  // namespace lx::native
