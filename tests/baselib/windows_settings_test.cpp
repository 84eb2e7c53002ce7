// SPDX-License-Identifier: BSD-3-Clause
// The machine's settings, in the real registry. What stood there comes back.
#define WIN32_LEAN_AND_MEAN
#include <gtest/gtest.h>
#include <windows.h>

#include <cstdint>
#include <string>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/utils/directories.h"
#include "baselib/utils/heap.h"
#include "baselib/winbits/registry.h"
#include "tests/support/fresh_services.h"
#include "tests/support/registry_value.h"

namespace {

using lx_test::kMachineEnvironment;
using lx_test::RegistryValue;
using lx_test::Stored;
using Bytes = RegistryValue::Bytes;

constexpr const wchar_t* kPrograms = L"SOFTWARE\\Microsoft\\Windows\\CurrentVersion";
constexpr const char* kProgramsKey = "SOFTWARE\\Microsoft\\Windows\\CurrentVersion";

// As programs see it that know of no wide text.
std::string Narrow(const std::wstring& text) {
  std::string bytes(4 * text.size() + 1, '\0');
  const int length = WideCharToMultiByte(CP_ACP, 0, text.c_str(), -1, bytes.data(),
                                         static_cast<int>(bytes.size()), nullptr, nullptr);
  return bytes.substr(0, static_cast<std::size_t>(length) - 1);
}

class Registry : public testing::Test {
 public:
  lx_test::FreshServices fresh;
  const RegistryValue home{HKEY_LOCAL_MACHINE, kMachineEnvironment, L"LX_HOME_DIR"};
  const RegistryValue programs{HKEY_LOCAL_MACHINE, kPrograms, L"ProgramFilesDir"};
  const RegistryValue machine{HKEY_LOCAL_MACHINE, kMachineEnvironment, L"LX_OF_A_TEST"};
  const RegistryValue user{HKEY_CURRENT_USER, L"Environment", L"LX_OF_A_TEST"};
};

TEST_F(Registry, NamesTheHomeInTheMachinesEnvironment) {
  home.SetText(L"D:\\Media\\");
  programs.SetText(L"E:\\Programs");

  EXPECT_STREQ("D:\\Media", lx::get_home_directory());
  EXPECT_STREQ("D:\\Media\\Settings", lx::get_standard_directory(70));
}

TEST_F(Registry, NamesTheProgramFilesFolder) {
  programs.SetText(L"E:\\Programs");

  EXPECT_STREQ("E:\\Programs\\Vantrell", lx::get_home_directory());
}

TEST_F(Registry, BringsAProgramFilesFolderOfItsOwn) {
  if (!programs.WasThere()) {
    GTEST_SKIP() << "a system without one";
  }
  programs.SetText(programs.Before());

  EXPECT_STREQ((Narrow(programs.Before()) + "\\Vantrell").c_str(), lx::get_home_directory());
}

TEST_F(Registry, WithoutEitherLeavesTheFixedHome) {
  EXPECT_STREQ("C:\\Program Files\\Vantrell", lx::get_home_directory());
}

TEST_F(Registry, TellsTheUsersEnvironmentFromTheMachines) {
  user.SetText(L"mine");
  EXPECT_STREQ("mine", lx::get_environment_setting("LX_OF_A_TEST", false));
  EXPECT_EQ(nullptr, lx::get_environment_setting("LX_OF_A_TEST", true));

  machine.SetText(L"everyone's");
  EXPECT_STREQ("everyone's", lx::get_environment_setting("LX_OF_A_TEST", true));
  EXPECT_STREQ("mine", lx::get_environment_setting("LX_OF_A_TEST", false));
}

TEST_F(Registry, GivesWideTextsInTheCodePage) {
  const std::wstring wide = L"D:\\Gr\u00f6\u00dfe \u00e9\u4e2d";
  machine.SetText(wide);
  programs.SetText(wide);

  EXPECT_STREQ(Narrow(wide).c_str(), lx::get_environment_setting("LX_OF_A_TEST", true));
  char* text = lx::get_registry_string(kProgramsKey, "ProgramFilesDir");
  EXPECT_STREQ(Narrow(wide).c_str(), text);
  lx::lx_free(text);
}

TEST_F(Registry, HoldsEnvironmentsOfAtMost1023Bytes) {
  // One of them is the end.
  machine.SetText(std::wstring(1022, L'a'));
  EXPECT_STREQ(std::string(1022, 'a').c_str(), lx::get_environment_setting("LX_OF_A_TEST", true));

  machine.SetText(std::wstring(1023, L'a'));
  EXPECT_EQ(nullptr, lx::get_environment_setting("LX_OF_A_TEST", true));
}

TEST_F(Registry, HoldsLongTextsOfOtherKeys) {
  programs.SetText(std::wstring(5000, L'b'));

  char* text = lx::get_registry_string(kProgramsKey, "ProgramFilesDir");
  EXPECT_STREQ(std::string(5000, 'b').c_str(), text);
  lx::lx_free(text);
}

TEST_F(Registry, HoldsEnvironmentsOfAnyType) {
  const Bytes abc = {'a', 'b', 'c', 0};
  for (const DWORD type : {REG_DWORD, REG_BINARY}) {
    machine.Set(type, abc);
    EXPECT_STREQ("abc", lx::get_environment_setting("LX_OF_A_TEST", true)) << type;
  }
}

TEST_F(Registry, HasNoTextWhereAValueIsOfAnotherType) {
  for (const DWORD type : {REG_NONE, REG_BINARY, REG_DWORD, REG_MULTI_SZ}) {
    programs.Set(type, Stored(L"a"));
    EXPECT_EQ(nullptr, lx::get_registry_string(kProgramsKey, "ProgramFilesDir")) << type;
  }
}

TEST_F(Registry, LeavesTheVariablesInATextAsTheyAre) {
  home.Set(REG_EXPAND_SZ, Stored(L"%SystemDrive%\\Media"));
  EXPECT_STREQ("%SystemDrive%\\Media", lx::get_home_directory());

  programs.Set(REG_EXPAND_SZ, Stored(L"%SystemDrive%\\Programs"));
  char* text = lx::get_registry_string(kProgramsKey, "ProgramFilesDir");
  EXPECT_STREQ("%SystemDrive%\\Programs", text);
  lx::lx_free(text);
}

TEST_F(Registry, EndsATextThatIsStoredWithoutAnEnd) {
  Bytes open = Stored(L"abc");
  open.resize(open.size() - sizeof(wchar_t));
  machine.SetText(L"a longer one");
  lx::get_environment_setting("LX_OF_A_TEST", true);
  machine.Set(REG_SZ, open);
  programs.Set(REG_SZ, open);

  EXPECT_STREQ("abc", lx::get_environment_setting("LX_OF_A_TEST", true));
  char* text = lx::get_registry_string(kProgramsKey, "ProgramFilesDir");
  EXPECT_STREQ("abc", text);
  lx::lx_free(text);
}

TEST_F(Registry, HasNothingUnderNamesThatItDoesNotKnow) {
  EXPECT_EQ(nullptr, lx::get_environment_setting("LX_OF_A_TEST", true));
  EXPECT_EQ(nullptr, lx::get_registry_string(kProgramsKey, "ProgramFilesDir"));
  EXPECT_EQ(nullptr, lx::get_registry_string("SOFTWARE\\No\\Such\\Key", "ProgramFilesDir"));
}

TEST_F(Registry, IsNotAskedForMoreThanToRead) {
  EXPECT_EQ(nullptr, lx::SystemPlatform().openSettings(lx::SettingsRoot::kMachine, "no such key"));
  lx::SettingsHandle key =
      lx::SystemPlatform().openSettings(lx::SettingsRoot::kMachine, kProgramsKey);
  ASSERT_NE(nullptr, key);

  EXPECT_EQ(ERROR_ACCESS_DENIED,
            RegSetValueExA(static_cast<HKEY>(key), "LX_OF_A_TEST", 0, REG_DWORD, nullptr, 0));
  lx::SystemPlatform().closeSettings(key);
}

// Records the key that a reader opens.
class RegistryKey : public Registry {
 public:
  RegistryKey() : table_(lx::SystemPlatform()), scope_(&table_) {
    table_.openSettings = [](lx::SettingsRoot root, const char* key) {
      return opened = lx::SystemPlatform().openSettings(root, key);
    };
  }

  static LSTATUS Ask() {
    return RegQueryInfoKeyW(static_cast<HKEY>(opened), nullptr, nullptr, nullptr, nullptr, nullptr,
                            nullptr, nullptr, nullptr, nullptr, nullptr, nullptr);
  }

  static inline lx::SettingsHandle opened;

 private:
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

TEST_F(RegistryKey, OfAnEnvironmentIsClosed) {
  machine.SetText(L"x");
  lx::get_environment_setting("LX_OF_A_TEST", true);
  EXPECT_EQ(ERROR_INVALID_HANDLE, Ask());

  lx::get_environment_setting("LX_OF_ANOTHER_TEST", true);
  EXPECT_EQ(ERROR_INVALID_HANDLE, Ask());
}

// Intended.
TEST_F(RegistryKey, OfATextStaysOpen) {
  programs.SetText(L"x");
  lx::lx_free(lx::get_registry_string(kProgramsKey, "ProgramFilesDir"));
  EXPECT_EQ(ERROR_SUCCESS, Ask());
  RegCloseKey(static_cast<HKEY>(opened));
}

}  // namespace
