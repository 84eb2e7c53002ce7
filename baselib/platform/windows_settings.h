// The machine's settings as the registry holds them, as the platform's table wants them. Texts
// are in the system's code page; a 64-bit process sees the 64-bit view.
#pragma once

#include <cstdint>

#include "baselib/platform/platform.h"

namespace lx::windows {

SettingsHandle OpenSettings(SettingsRoot root, const char* key);
bool QuerySetting(SettingsHandle settings, const char* name, std::uint32_t* type, void* buffer,
                  std::uint32_t* size);
void CloseSettings(SettingsHandle settings);

}  // namespace lx::windows
