// SPDX-License-Identifier: BSD-3-Clause
// The settings of a system without a registry.
#include <gtest/gtest.h>
#include <pwd.h>
#include <unistd.h>

#include <filesystem>
#include <fstream>
#include <string>

#include "baselib/platform/platform.h"
#include "baselib/utils/directories.h"
#include "tests/support/fresh_services.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;

// The system's own settings, in files below a root of the test's.
class SettingsFiles : public testing::Test {
 public:
  SettingsFiles() : table_(lx::SystemPlatform()), scope_(&table_) {
    table_.settingsRoot = root_.c_str();
  }

  void Write(const std::string& file, const std::string& text) {
    const fs::path path = root_ + file;
    fs::create_directories(path.parent_path());
    std::ofstream(path) << text;
  }

 private:
  lx_test::ScratchFolder folder_;
  const std::string root_ = folder_.Path().string();
  lx_test::FreshServices fresh_;
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

TEST_F(SettingsFiles, NameNoHomeWhereThereAreNone) {
  EXPECT_STREQ("/opt/Vantrell", lx::get_home_directory());
}

TEST_F(SettingsFiles, HoldTheMachinesEnvironment) {
  Write("/etc/environment", "PATH=/bin\n# LX_HOME_DIR=/no\n LX_HOME_DIR = \"/big disk/media\" \n");

  EXPECT_STREQ("/big disk/media", lx::get_home_directory());
  EXPECT_EQ(nullptr, lx::get_environment_setting("LX_HOME", true));
  EXPECT_EQ(nullptr, lx::get_environment_setting("LX_HOME_DIR", false));
}

TEST_F(SettingsFiles, HoldTheProgramFilesFolder) {
  Write("/etc/vantrell.conf", "ProgramFilesDir=/srv/programs\n");

  EXPECT_STREQ("/srv/programs/Vantrell", lx::get_home_directory());
}

TEST_F(SettingsFiles, HoldTheUsersEnvironmentTheLastFileWinning) {
  const std::string folder = getpwuid(getuid())->pw_dir + std::string("/.config/environment.d/");
  Write(folder + "20-b.conf", "X=second\nY='y'\n");
  Write(folder + "10-a.conf", "X=first\n");
  Write(folder + "30-c.txt", "X=third\n");

  EXPECT_STREQ("second", lx::get_environment_setting("X", false));
  EXPECT_STREQ("y", lx::get_environment_setting("Y", false));
}

}  // namespace
