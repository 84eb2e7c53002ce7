// SPDX-License-Identifier: BSD-3-Clause
// What a person reads in the properties of the module's file.
#define WIN32_LEAN_AND_MEAN
#include <gtest/gtest.h>
#include <windows.h>

#include <string>
#include <vector>

#include "tests/border/module_path.h"

namespace {

class VersionRecord : public testing::Test {
 protected:
  VersionRecord() {
    for (const char* c = lx_test::ModuleFile(); *c != '\0'; ++c) {
      file_.push_back(static_cast<wchar_t>(*c));
    }
    DWORD ignored = 0;
    record_.resize(GetFileVersionInfoSizeW(file_.c_str(), &ignored));
    found_ = !record_.empty() &&
             GetFileVersionInfoW(file_.c_str(), 0, static_cast<DWORD>(record_.size()),
                                 record_.data()) != FALSE;
  }

  void SetUp() override { ASSERT_TRUE(found_) << "error " << GetLastError(); }

  template <class Value>
  const Value* Query(const std::wstring& path, UINT* size) const {
    void* value = nullptr;
    return VerQueryValueW(record_.data(), path.c_str(), &value, size) != FALSE
               ? static_cast<const Value*>(value)
               : nullptr;
  }

  // In United States English, as UTF-16.
  std::wstring Text(const std::wstring& name) const {
    UINT length = 0;
    const auto* text = Query<wchar_t>(L"\\StringFileInfo\\040904B0\\" + name, &length);
    return text != nullptr ? text : L"(absent)";
  }

 private:
  std::wstring file_;
  std::vector<char> record_;
  bool found_ = false;
};

TEST_F(VersionRecord, TellsWhatTheFileIs) {
  EXPECT_EQ(L"Plugin/driver for Quantel iQ Kernel", Text(L"FileDescription"));
}

TEST_F(VersionRecord, HasTheVersionOfFileAndProduct) {
  EXPECT_EQ(L"5.13", Text(L"FileVersion"));
  EXPECT_EQ(L"5.13", Text(L"ProductVersion"));
}

TEST_F(VersionRecord, NamesTheBuild) { EXPECT_EQ(L"Release build", Text(L"ProductName")); }

TEST_F(VersionRecord, NotesWhatItWasBuiltWith) {
  EXPECT_EQ(
      L"Note: ProductVersion is version 3.6 of Quantel iQ Kernel that this DLL was built with",
      Text(L"Comments"));
}

TEST_F(VersionRecord, HasTheVersionInNumbersToo) {
  UINT size = 0;
  const auto* fixed = Query<VS_FIXEDFILEINFO>(L"\\", &size);
  ASSERT_NE(nullptr, fixed);
  ASSERT_EQ(sizeof *fixed, size);
  EXPECT_EQ(DWORD{0xFEEF04BD}, fixed->dwSignature);
  EXPECT_EQ(DWORD{0x0005000D}, fixed->dwFileVersionMS);
  EXPECT_EQ(DWORD{0}, fixed->dwFileVersionLS);
  EXPECT_EQ(DWORD{0x0005000D}, fixed->dwProductVersionMS);
  EXPECT_EQ(DWORD{0}, fixed->dwProductVersionLS);
  EXPECT_EQ(DWORD{VFT_DLL}, fixed->dwFileType);
  EXPECT_EQ(DWORD{VOS_NT_WINDOWS32}, fixed->dwFileOS);
}

TEST_F(VersionRecord, IsInOneLanguageAndCodePage) {
  UINT size = 0;
  const auto* translation = Query<WORD>(L"\\VarFileInfo\\Translation", &size);
  ASSERT_NE(nullptr, translation);
  ASSERT_EQ(2 * sizeof(WORD), size);
  EXPECT_EQ(0x0409, translation[0]);
  EXPECT_EQ(0x04B0, translation[1]);
}

}  // namespace
