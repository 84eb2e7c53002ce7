// SPDX-License-Identifier: BSD-3-Clause
// What --save-params writes, read back.
#include <gtest/gtest.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "host/looks/parameter_file.h"
#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Look;
using glimmerhost::Page;
using glimmerhost::ReadParameterFile;
using glimmerhost::SaveParameters;

class SavedParameters : public testing::Test {
 public:
  std::string TextOf(const std::string& name) {
    std::ostringstream text;
    text << std::ifstream(folder / name, std::ios::binary).rdbuf();
    return text.str();
  }

  lx_test::ScratchFolder folder;
  const Page page = Page::Load(PAGE);
};

Look FullLook() {
  Look look;
  look["shape"] = "polygon";
  look["radius"] = "first=40px; 24~=4%; 50%|=0.1; last-2=5px";
  look["radius-y"] = "1e-3";
  look["match"] = "off";
  look["sides"] = "7";
  look["rotation"] = "-0";
  look["emphasis"] = "+50";
  look["emph-alpha"] = "true";
  look["center"] = "25%,100px";
  look["radius-psf1"] = "0.1";
  look["radius-psf2"] = "007";
  look.set = {"PRM_Sides=0=3; 4=5", "PRM_Precision=on"};
  look["pixel-aspect"] = "16:15";
  look["alpha"] = "as-is";
  return look;
}

TEST_F(SavedParameters, ReadBackAsTheyWereTyped) {
  for (const char* name : {"look.toml", "look.json"}) {
    SaveParameters(page, folder / name, FullLook(), false);

    Look read = ReadParameterFile(page, folder / name);
    std::sort(read.set.rbegin(), read.set.rend());
    EXPECT_EQ(FullLook(), read) << TextOf(name);
  }
}

TEST_F(SavedParameters, AreWrittenForHandsAndForMachines) {
  Look look;
  look["shape"] = "circle";
  look["radius"] = "40px";
  look["match"] = "on";
  look["sides"] = "5";
  look["emphasis"] = "0.5";
  look.set = {"PRM_Precision=off"};

  SaveParameters(page, folder / "look.toml", look, false);
  SaveParameters(page, folder / "look.json", look, false);

  EXPECT_EQ(
      "# What glimmerhost --params reads.\nversion = 1\nshape = \"circle\"\nmatch = true\n"
      "radius = \"40px\"\nsides = 5\nemphasis = 0.5\nPRM_Precision = false\n",
      TextOf("look.toml"));
  EXPECT_EQ(
      "{\n  \"version\": 1,\n  \"shape\": \"circle\",\n  \"match\": true,\n"
      "  \"radius\": \"40px\",\n  \"sides\": 5,\n  \"emphasis\": 0.5,\n  \"PRM_Precision\": "
      "false\n}\n",
      TextOf("look.json"));
}

TEST_F(SavedParameters, NameAPictureFromTheirOwnFolder) {
  const fs::path name = u8"h '1' \u00f6.####.png";
  Look look;
  look["spread"] = (folder / "hearts" / name).string();

  SaveParameters(page, folder / "look.toml", look, false);
  EXPECT_EQ(look.At("spread"), ReadParameterFile(page, folder / "look.toml").At("spread"));
  fs::create_directory(folder / "moved");
  fs::rename(folder / "look.toml", folder / "moved" / "look.toml");
  EXPECT_EQ((folder / "moved" / "hearts" / name).string(),
            ReadParameterFile(page, folder / "moved" / "look.toml").At("spread"));

  // One that lies elsewhere, by its whole name.
  SaveParameters(page, folder / "moved" / "other.json", look, false);
  fs::rename(folder / "moved" / "other.json", folder / "other.json");
  EXPECT_EQ(look.At("spread"), ReadParameterFile(page, folder / "other.json").At("spread"));
}

TEST_F(SavedParameters, ReplaceAFileOnlyWhereTheyMay) {
  SaveParameters(page, folder / "look.toml", FullLook(), false);
  EXPECT_THROW(SaveParameters(page, folder / "look.toml", {}, false), glimmerhost::Failure);
  EXPECT_EQ("polygon", ReadParameterFile(page, folder / "look.toml").At("shape"));

  SaveParameters(page, folder / "look.toml", {}, true);
  EXPECT_EQ("", ReadParameterFile(page, folder / "look.toml").At("shape"));
}

TEST_F(SavedParameters, LeaveNothingWhereTheyCannotBeSaved) {
  Look twoLines;
  twoLines["spread"] = (folder / "a\nb.png").string();
  Look noUtf8;
  noUtf8["shape"] = "\xff";
  // The same key twice: one would be lost.
  Look twice;
  twice.set = {"PRM_Sides=3", "PRM_Sides=4"};
  for (const Look& look : {twoLines, noUtf8, twice}) {
    EXPECT_THROW(SaveParameters(page, folder / "look.toml", look, false), glimmerhost::Failure);
    EXPECT_THROW(SaveParameters(page, folder / "look.json", look, false), glimmerhost::Failure);
  }
  EXPECT_THROW(SaveParameters(page, folder / "none" / "look.toml", {}, false),
               glimmerhost::Failure);
  EXPECT_THROW(SaveParameters(page, folder / "look.txt", {}, false), glimmerhost::UsageError);
  EXPECT_EQ(0, folder.FileCount());
}

}  // namespace
