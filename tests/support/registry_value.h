// SPDX-License-Identifier: BSD-3-Clause
// A value of the registry that is a test's for the length of a scope. What stood there comes
// back. One test at a time on the whole machine: the next one waits.
#pragma once

#ifndef WIN32_LEAN_AND_MEAN
#define WIN32_LEAN_AND_MEAN
#endif
#include <windows.h>

#include <string>
#include <vector>

namespace lx_test {

inline constexpr const wchar_t* kMachineEnvironment =
    L"SYSTEM\\CurrentControlSet\\Control\\Session Manager\\Environment";

class RegistryValue {
 public:
  using Bytes = std::vector<BYTE>;

  RegistryValue(HKEY root, const wchar_t* key, std::wstring name);
  ~RegistryValue();
  RegistryValue(const RegistryValue&) = delete;
  RegistryValue& operator=(const RegistryValue&) = delete;

  void Set(DWORD type, const Bytes& bytes) const;
  void SetText(const std::wstring& text) const;
  bool Read(DWORD* type, Bytes* bytes) const;

  // What stood there before, as a text.
  std::wstring Before() const;
  bool WasThere() const { return wasThere_; }

 private:
  void Remove() const;

  HANDLE turn_;  // of the calling thread; it may have several values at once
  std::wstring name_;
  HKEY key_ = nullptr;
  bool wasThere_ = false;
  DWORD type_ = REG_NONE;
  Bytes bytes_;
};

// A text as the registry stores it, with its end.
RegistryValue::Bytes Stored(const std::wstring& text);

}  // namespace lx_test
