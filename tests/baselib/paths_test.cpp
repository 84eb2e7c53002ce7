// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/paths.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "tests/support/scratch_folder.h"
#include "tests/support/settings_recorder.h"

namespace {

namespace fs = std::filesystem;
using lx_test::SettingsRecorder;
using Calls = std::vector<std::string>;

// The components of a path, up to the first that is not there.
Calls Components(const std::string& path) {
  Calls parts;
  for (int index = 0;; ++index) {
    const char* part = lx::path_component(path.c_str(), index, nullptr);
    if (part == nullptr) {
      return parts;
    }
    parts.emplace_back(part);
  }
}

TEST(PathComponent, PartsPathsWithDrives) {
  const SettingsRecorder form('\\');

  EXPECT_EQ((Calls{"C:\\", "a", "b"}), Components("C:\\a\\b"));
  EXPECT_EQ((Calls{"C:\\"}), Components("C:"));
  EXPECT_EQ((Calls{"a", "b:"}), Components("a\\b:"));
  EXPECT_EQ((Calls{"a/b"}), Components("a/b"));
}

TEST(PathComponent, KeepsLeadingSeparatorsOnTheFirst) {
  const SettingsRecorder form('\\');

  EXPECT_EQ((Calls{"\\\\srv", "share", "x"}), Components("\\\\srv\\share\\x"));
  EXPECT_EQ((Calls{"\\a", "b"}), Components("\\a\\b"));
}

TEST(PathComponent, PartsPathsWithSlashes) {
  const SettingsRecorder form('/');

  EXPECT_EQ((Calls{"/opt", "Vantrell", "Settings"}), Components("/opt/Vantrell/Settings"));
  EXPECT_EQ((Calls{"//srv", "share"}), Components("//srv/share"));
  EXPECT_EQ((Calls{"a\\b"}), Components("a\\b"));
}

TEST(PathComponent, IsNothingBehindTheEnd) {
  const SettingsRecorder form('\\');

  EXPECT_EQ(Calls{}, Components(""));
  EXPECT_EQ(Calls{}, Components("\\"));
  EXPECT_EQ(Calls{}, Components("\\\\"));
  EXPECT_EQ((Calls{"a"}), Components("a\\"));
  EXPECT_EQ((Calls{"a", "", "b"}), Components("a\\\\b"));
  EXPECT_EQ(nullptr, lx::path_component(nullptr, 0, nullptr));
  EXPECT_EQ(nullptr, lx::path_component("a", -1, nullptr));
}

TEST(PathComponent, CopiesWhatItGives) {
  const SettingsRecorder form('/');
  char out[lx::kPathBytes] = "before";

  EXPECT_STREQ("b", lx::path_component("a/b", 1, out));
  EXPECT_STREQ("b", out);
  EXPECT_EQ(nullptr, lx::path_component("a/b", 2, out));
  EXPECT_STREQ("b", out);
}

TEST(PathComponent, CutsWhatIsTooLong) {
  const SettingsRecorder form('/');
  const std::string path(5000, 'a');

  EXPECT_EQ(std::string(1023, 'a'), lx::path_component(path.c_str(), 0, nullptr));
}

TEST(PathComponent, OverwritesItsText) {
  const SettingsRecorder form('/');
  const char* first = lx::path_component("a/b", 0, nullptr);
  const char* second = lx::path_component("a/b", 1, nullptr);

  EXPECT_EQ(first, second);
  EXPECT_STREQ("b", first);
}

TEST(DirectoryPath, IsDoneWhereItIsThere) {
  SettingsRecorder form('\\');
  SettingsRecorder::state().directories = {"C:\\a\\b"};

  EXPECT_EQ(1, lx::make_directory_path("C:\\a\\b"));
  EXPECT_EQ(Calls{}, form.Calls());
}

TEST(DirectoryPath, IsMadeFromTheTop) {
  SettingsRecorder form('/');
  SettingsRecorder::state().directories = {"/opt"};

  EXPECT_EQ(1, lx::make_directory_path("/opt/Vantrell/Settings"));
  EXPECT_EQ((Calls{"make /opt/Vantrell", "make /opt/Vantrell/Settings"}), form.Calls());
}

// The drive brings a separator of its own.
TEST(DirectoryPath, HasTwoSeparatorsBehindADrive) {
  SettingsRecorder form('\\');
  SettingsRecorder::state().directories = {"C:\\"};

  EXPECT_EQ(1, lx::make_directory_path("C:\\a\\b"));
  EXPECT_EQ((Calls{"make C:\\\\a", "make C:\\\\a\\b"}), form.Calls());
}

TEST(DirectoryPath, LeavesServerAndShareAlone) {
  SettingsRecorder form('\\');

  EXPECT_EQ(1, lx::make_directory_path("\\\\srv\\share\\x\\y"));
  EXPECT_EQ((Calls{"make \\\\srv\\share\\x", "make \\\\srv\\share\\x\\y"}), form.Calls());
}

TEST(DirectoryPath, EndsAtTheFirstThatCannotBeMade) {
  SettingsRecorder form('/');
  SettingsRecorder::state().refused = "/a/b";

  EXPECT_EQ(0, lx::make_directory_path("/a/b/c"));
  EXPECT_EQ((Calls{"make /a", "make /a/b"}), form.Calls());
}

TEST(DirectoryPath, OfNothingIsDone) {
  SettingsRecorder form('/');

  EXPECT_EQ(1, lx::make_directory_path(""));
  EXPECT_EQ(Calls{}, form.Calls());
}

// A folder of this system, removed at the end.
class RealFolder : public testing::Test {
 public:
  lx_test::ScratchFolder folder;
  const fs::path path = folder.Path();
};

TEST_F(RealFolder, IsToldFromAFileAndFromNothing) {
  std::ofstream(path / "file") << "x";

  EXPECT_TRUE(lx::is_directory(path.string().c_str()));
  EXPECT_FALSE(lx::is_directory((path / "file").string().c_str()));
  EXPECT_FALSE(lx::is_directory((path / "none").string().c_str()));
}

TEST_F(RealFolder, IsMadeWithAllAboveIt) {
  EXPECT_EQ(1, lx::make_directory_path((path / "a" / "b" / "c").string().c_str()));
  EXPECT_TRUE(fs::is_directory(path / "a" / "b" / "c"));
  std::ofstream(path / "file") << "x";
  EXPECT_EQ(0, lx::make_directory_path((path / "file" / "b").string().c_str()));
}

TEST_F(RealFolder, StaysUsableWhenItIsMadeWritable) {
  EXPECT_TRUE(lx::set_file_writable(path.string().c_str(), true));

  std::ofstream(path / "file") << "x";
  EXPECT_TRUE(fs::exists(path / "file"));
}

TEST_F(RealFolder, HasFilesThatAreReadOnlyAndNotAgain) {
  const fs::path file = path / "file";
  std::ofstream(file) << "x";
  const auto isWritable = [&] {
    return (fs::status(file).permissions() & fs::perms::owner_write) != fs::perms::none;
  };

  EXPECT_TRUE(lx::set_file_writable(file.string().c_str(), false));
  EXPECT_FALSE(isWritable());
  EXPECT_TRUE(lx::set_file_writable(file.string().c_str(), true));
  EXPECT_TRUE(isWritable());
  EXPECT_FALSE(lx::set_file_writable((path / "none").string().c_str(), true));
}

}  // namespace
