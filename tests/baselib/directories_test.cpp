// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/directories.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "baselib/utils/heap.h"
#include "baselib/utils/log_sink.h"
#include "baselib/winbits/registry.h"
#include "tests/support/logged_lines.h"
#include "tests/support/settings_recorder.h"
#include "tests/support/system.h"

namespace {

using lx_test::SettingsRecorder;
using Calls = std::vector<std::string>;

TEST(HomeDirectory, IsTheMachinesSetting) {
  SettingsRecorder settings('\\');
  settings.SetHome("D:\\Media\\");
  settings.SetProgramFiles("C:\\Programs");

  EXPECT_STREQ("D:\\Media", lx::get_home_directory());
  EXPECT_STREQ("D:\\Media\\Settings", lx::get_standard_directory(70));
}

TEST(HomeDirectory, LiesInTheProgramFilesFolderWithoutASetting) {
  SettingsRecorder settings('\\');
  settings.SetProgramFiles("C:\\Programs");

  EXPECT_STREQ("C:\\Programs\\Vantrell", lx::get_home_directory());
}

TEST(HomeDirectory, IsFixedWithoutAny) {
  {
    const SettingsRecorder settings('\\');
    EXPECT_STREQ("C:\\Program Files\\Vantrell", lx::get_home_directory());
  }
  const SettingsRecorder settings('/');
  EXPECT_STREQ("/opt/Vantrell", lx::get_home_directory());
}

TEST(HomeDirectory, HasSlashesWhereTheSystemHasThem) {
  SettingsRecorder settings('/');
  settings.SetProgramFiles("/srv/programs");
  EXPECT_STREQ("/srv/programs/Vantrell", lx::get_home_directory());
  settings.SetHome("/media/");
  EXPECT_STREQ("/media", lx::get_home_directory());
  EXPECT_STREQ("/media/Logs", lx::get_standard_directory(73));
}

TEST(HomeDirectory, LosesOneSeparatorAtItsEnd) {
  SettingsRecorder settings('\\');
  settings.SetHome("D:\\Media\\\\");
  EXPECT_STREQ("D:\\Media\\", lx::get_home_directory());
  settings.SetHome("\\");
  EXPECT_STREQ("", lx::get_home_directory());
}

TEST(HomeDirectory, IgnoresTheProcessesEnvironment) {
  lx_test::SetVariable("LX_HOME_DIR", "/from/the/shell");
  const SettingsRecorder settings('/');

  EXPECT_STREQ("/opt/Vantrell", lx::get_home_directory());
  lx_test::RemoveVariable("LX_HOME_DIR");
}

TEST(HomeDirectory, AsksInItsOrder) {
  SettingsRecorder settings('\\');
  const std::string open = "open ";
  lx::get_home_directory();
  EXPECT_EQ(
      (Calls{open + SettingsRecorder::kMachineEnvironment, open + SettingsRecorder::kPrograms}),
      settings.Calls());

  // The key of the program files stays open.
  settings.SetProgramFiles("C:\\Programs");
  lx::get_home_directory();
  EXPECT_EQ((Calls{open + SettingsRecorder::kMachineEnvironment, open + SettingsRecorder::kPrograms,
                   "size of ProgramFilesDir", "read ProgramFilesDir"}),
            settings.Calls());

  settings.SetHome("D:\\Media");
  lx::get_home_directory();
  EXPECT_EQ((Calls{open + SettingsRecorder::kMachineEnvironment, "size of LX_HOME_DIR",
                   "read LX_HOME_DIR", "close"}),
            settings.Calls());
}

TEST(HomeDirectory, IsWorkedOutAnewAtEachCall) {
  SettingsRecorder settings('/');
  settings.SetHome("/one");
  const char* first = lx::get_home_directory();
  settings.SetHome("/two");

  EXPECT_EQ(first, lx::get_home_directory());
  EXPECT_STREQ("/two", first);
}

TEST(HomeDirectory, TellsItsWayAtTheLowestLevel) {
  SettingsRecorder settings('/');
  lx::log_sink().threshold = 5;
  testing::internal::CaptureStderr();
  lx::get_home_directory();
  EXPECT_EQ(
      "(LX LIB) TRACE: get_home_directory() is returning utils.h hardwired DEFAULT: "
      "/opt/Vantrell\n",
      lx_test::LoggedLines());

  settings.SetProgramFiles("/srv");
  testing::internal::CaptureStderr();
  lx::get_standard_directory(70);
  EXPECT_EQ(
      "(LX LIB) TRACE: No LX_HOME_DIR: get_home_directory() got Registry ProgramFilesDir entry: "
      "/srv\n"
      "(LX LIB) TRACE: get_home_directory() is returning: /srv/Vantrell\n"
      "(LX LIB) TRACE: get_standard_directory(70) is returning: /srv/Vantrell/Settings\n",
      lx_test::LoggedLines());
}

TEST(HomeDirectory, SaysNothingOtherwise) {
  const SettingsRecorder settings('/');
  testing::internal::CaptureStderr();
  lx::get_standard_directory(73);
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

TEST(StandardDirectory, HasThreeNumbers) {
  SettingsRecorder settings('\\');
  settings.SetHome("D:\\Media");

  EXPECT_STREQ("D:\\Media", lx::get_standard_directory(69));
  EXPECT_STREQ("D:\\Media\\Settings", lx::get_standard_directory(70));
  EXPECT_STREQ("D:\\Media\\Logs", lx::get_standard_directory(73));
  for (const unsigned number : {0U, 68U, 71U, 72U, 74U, 0xFFFFFFFFU}) {
    EXPECT_STREQ(" ", lx::get_standard_directory(number)) << number;
  }
}

TEST(StandardDirectory, AreMadeInTheirOrderAndThenLetBeWritten) {
  SettingsRecorder settings('/');
  settings.SetHome("/m");
  SettingsRecorder::state().directories = {"/m"};

  EXPECT_EQ(1, lx::make_standard_directories());

  Calls made;
  for (const std::string& call : settings.Calls()) {
    if (call.rfind("make", 0) == 0 || call.rfind("writable", 0) == 0) {
      made.push_back(call);
    }
  }
  EXPECT_EQ((Calls{"make /m/Settings", "make /m/Logs", "writable /m", "writable /m/Settings",
                   "writable /m/Logs"}),
            made);
}

TEST(StandardDirectory, AreLeftAtTheFirstThatCannotBeMade) {
  SettingsRecorder settings('/');
  settings.SetHome("/m");
  SettingsRecorder::state().refused = "/m/Settings";

  EXPECT_EQ(0, lx::make_standard_directories());

  const Calls calls = settings.Calls();
  EXPECT_EQ("make /m/Settings", calls.back());
}

TEST(EnvironmentSetting, IsAtMost1023BytesLong) {
  SettingsRecorder settings('/');
  auto& values = SettingsRecorder::state().keys[SettingsRecorder::kMachineEnvironment];
  values["X"] = {std::string(1023, 'a')};
  EXPECT_EQ(std::string(1023, 'a'), lx::get_environment_setting("X", true));
  values["X"] = {std::string(1024, 'a')};
  EXPECT_EQ(nullptr, lx::get_environment_setting("X", true));
  values["X"] = {std::string(1, '\0')};
  EXPECT_STREQ("", lx::get_environment_setting("X", true));
  values["X"] = {""};
  EXPECT_EQ(nullptr, lx::get_environment_setting("X", true));
  EXPECT_EQ("close", settings.Calls().back());
}

TEST(EnvironmentSetting, EndsEvenWhereItIsStoredWithoutAnEnd) {
  const SettingsRecorder settings('/');
  auto& values = SettingsRecorder::state().keys[SettingsRecorder::kMachineEnvironment];
  values["X"] = {"a long one"};
  lx::get_environment_setting("X", true);
  values["X"] = {"ab"};

  EXPECT_STREQ("ab", lx::get_environment_setting("X", true));
}

TEST(EnvironmentSetting, MayBeOfAnyType) {
  const SettingsRecorder settings('/');
  SettingsRecorder::state().keys[SettingsRecorder::kMachineEnvironment]["X"] = {"ab", 4};

  EXPECT_STREQ("ab", lx::get_environment_setting("X", true));
}

TEST(EnvironmentSetting, IsTheMachinesOrTheUsers) {
  SettingsRecorder settings('/');
  SettingsRecorder::state().keys["user Environment"]["X"] = {"mine"};

  EXPECT_STREQ("mine", lx::get_environment_setting("X", false));
  EXPECT_EQ("open user Environment", settings.Calls().front());
  EXPECT_EQ(nullptr, lx::get_environment_setting("X", true));
}

TEST(RegistryString, IsTextOfTwoTypes) {
  const SettingsRecorder settings('/');
  auto& values = SettingsRecorder::state().keys["machine K"];
  for (const std::uint32_t type : {1U, 2U}) {
    values["V"] = {"text", type};  // stored without an end
    char* text = lx::get_registry_string("K", "V");
    EXPECT_STREQ("text", text);
    lx::lx_free(text);
  }
  for (const std::uint32_t type : {0U, 3U, 4U, 7U}) {
    values["V"] = {"text", type};
    EXPECT_EQ(nullptr, lx::get_registry_string("K", "V")) << type;
  }
  values["V"] = {""};
  EXPECT_EQ(nullptr, lx::get_registry_string("K", "V"));
  EXPECT_EQ(nullptr, lx::get_registry_string("K", "W"));
  EXPECT_EQ(nullptr, lx::get_registry_string("L", "V"));
}

}  // namespace
