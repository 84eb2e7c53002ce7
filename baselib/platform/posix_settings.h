// What stands for the machine's settings where there is no registry: files of the form
// NAME=VALUE, one a line, values quoted or not.
//
//   the machine's environment   /etc/environment
//   the user's environment      *.conf in .config/environment.d of the home that the password
//                               database names, the last in the order of their names winning
//   the program files folder    /etc/vantrell.conf
//
// All of them below the table's settingsRoot.
#pragma once

#include <cstdint>

#include "baselib/platform/platform.h"

namespace lx::posix {

SettingsHandle OpenSettings(SettingsRoot root, const char* key);
bool QuerySetting(SettingsHandle settings, const char* name, std::uint32_t* type, void* buffer,
                  std::uint32_t* size);
void CloseSettings(SettingsHandle settings);

}  // namespace lx::posix
