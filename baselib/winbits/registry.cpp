// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/winbits/registry.h"

#include <cstdint>
#include <cstring>

#include "baselib/platform/platform.h"
#include "baselib/utils/heap.h"

namespace lx {

// Intended: the key stays open, on every path.
char* get_registry_string(const char* key, const char* value) {
  const Platform& platform = GetPlatform();
  SettingsHandle settings = platform.openSettings(SettingsRoot::kMachine, key);
  if (settings == nullptr) {
    return nullptr;
  }
  std::uint32_t size = 0;
  std::uint32_t type = 0;
  platform.querySetting(settings, value, &type, nullptr, &size);
  // The largest size has no room for one byte more.
  if (size == 0 || size == 0xFFFFFFFFU || (type != kSettingText && type != kSettingExpandable)) {
    return nullptr;
  }
  // One byte more, since a stored value need not end in a zero.
  auto* text = static_cast<char*>(lx_malloc(size + 1, "baselib/winbits"));
  if (text != nullptr) {
    std::memset(text, 0, size + 1);
    platform.querySetting(settings, value, &type, text, &size);
  }
  return text;
}

}  // namespace lx
