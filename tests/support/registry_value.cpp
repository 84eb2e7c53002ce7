// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/registry_value.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <utility>

namespace lx_test {

RegistryValue::Bytes Stored(const std::wstring& text) {
  const auto* first = reinterpret_cast<const BYTE*>(text.c_str());
  return {first, first + (text.size() + 1) * sizeof(wchar_t)};
}

RegistryValue::RegistryValue(HKEY root, const wchar_t* key, std::wstring name)
    : turn_(CreateMutexW(nullptr, FALSE, L"Global\\GlimmerBlur tests of the registry")),
      name_(std::move(name)) {
  WaitForSingleObject(turn_, INFINITE);
  RegCreateKeyExW(root, key, 0, nullptr, 0, KEY_QUERY_VALUE | KEY_SET_VALUE, nullptr, &key_,
                  nullptr);
  wasThere_ = Read(&type_, &bytes_);
  Remove();
}

RegistryValue::~RegistryValue() {
  Remove();
  if (wasThere_) {
    Set(type_, bytes_);
  }
  RegCloseKey(key_);
  ReleaseMutex(turn_);
  CloseHandle(turn_);
}

void RegistryValue::Set(DWORD type, const Bytes& bytes) const {
  ASSERT_EQ(ERROR_SUCCESS, RegSetValueExW(key_, name_.c_str(), 0, type, bytes.data(),
                                          static_cast<DWORD>(bytes.size())));
}

void RegistryValue::SetText(const std::wstring& text) const { Set(REG_SZ, Stored(text)); }

bool RegistryValue::Read(DWORD* type, Bytes* bytes) const {
  DWORD size = 0;
  if (RegQueryValueExW(key_, name_.c_str(), nullptr, type, nullptr, &size) != ERROR_SUCCESS) {
    return false;
  }
  bytes->resize(size);
  return RegQueryValueExW(key_, name_.c_str(), nullptr, type, bytes->data(), &size) ==
         ERROR_SUCCESS;
}

std::wstring RegistryValue::Before() const {
  std::wstring text(reinterpret_cast<const wchar_t*>(bytes_.data()),
                    bytes_.size() / sizeof(wchar_t));
  return text.substr(0, text.find(L'\0'));
}

void RegistryValue::Remove() const { RegDeleteValueW(key_, name_.c_str()); }

}  // namespace lx_test
