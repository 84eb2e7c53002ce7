// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/platform/settings.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {
namespace {

static_assert(kSettingText == REG_SZ && kSettingExpandable == REG_EXPAND_SZ);

HKEY KeyOf(SettingsHandle settings) { return static_cast<HKEY>(settings); }

}  // namespace

SettingsHandle OpenSettings(SettingsRoot root, const char* key) {
  const HKEY top = root == SettingsRoot::kMachine ? HKEY_LOCAL_MACHINE : HKEY_CURRENT_USER;
  HKEY opened = nullptr;
  return ::RegOpenKeyExA(top, key, 0, KEY_QUERY_VALUE, &opened) == ERROR_SUCCESS ? opened : nullptr;
}

bool QuerySetting(SettingsHandle settings, const char* name, std::uint32_t* type, void* buffer,
                  std::uint32_t* size) {
  DWORD kind = 0;
  DWORD bytes = *size;
  const LSTATUS status =
      ::RegQueryValueExA(KeyOf(settings), name, nullptr, &kind, static_cast<BYTE*>(buffer), &bytes);
  // Only a value that is there has a size.
  *size = status == ERROR_SUCCESS || status == ERROR_MORE_DATA ? bytes : 0;
  if (type != nullptr) {
    *type = kind;
  }
  return status == ERROR_SUCCESS;
}

void CloseSettings(SettingsHandle settings) { ::RegCloseKey(KeyOf(settings)); }

}  // namespace lx::native
