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
};

Look FullLook() {
  Look look;
  look.values.shape = "polygon";
  look.values.radius = "0=40px; 24~=4%; -1|=0.1";
  look.values.radiusY = "1e-3";
  look.values.match = "off";
  look.values.sides = "7";
  look.values.rotation = "-0";
  look.values.emphasis = "+50";
  look.values.emphAlpha = "true";
  look.values.center = "25%,100px";
  look.values.radiusPsf1 = "0.1";
  look.values.radiusPsf2 = "007";
  look.values.set = {"PRM_Sides=0=3; 4=5", "PRM_Precision=on"};
  look.pixelAspect = "16:15";
  look.alpha = "as-is";
  return look;
}

TEST_F(SavedParameters, ReadBackAsTheyWereTyped) {
  for (const char* name : {"look.toml", "look.json"}) {
    SaveParameters(folder / name, FullLook(), false);

    Look read = ReadParameterFile(folder / name);
    std::sort(read.values.set.rbegin(), read.values.set.rend());
    EXPECT_EQ(FullLook(), read) << TextOf(name);
  }
}

TEST_F(SavedParameters, AreWrittenForHandsAndForMachines) {
  Look look;
  look.values.shape = "circle";
  look.values.radius = "40px";
  look.values.match = "on";
  look.values.sides = "5";
  look.values.emphasis = "0.5";
  look.values.set = {"PRM_Precision=off"};

  SaveParameters(folder / "look.toml", look, false);
  SaveParameters(folder / "look.json", look, false);

  EXPECT_EQ(
      "# What glimmerhost --params reads.\nversion = 1\nshape = \"circle\"\nradius = \"40px\"\n"
      "match = true\nsides = 5\nemphasis = 0.5\nPRM_Precision = false\n",
      TextOf("look.toml"));
  EXPECT_EQ(
      "{\n  \"version\": 1,\n  \"shape\": \"circle\",\n  \"radius\": \"40px\",\n"
      "  \"match\": true,\n  \"sides\": 5,\n  \"emphasis\": 0.5,\n  \"PRM_Precision\": false\n}\n",
      TextOf("look.json"));
}

TEST_F(SavedParameters, NameAPictureFromTheirOwnFolder) {
  const fs::path name = u8"h '1' \u00f6.####.png";
  Look look;
  look.spread = (folder / "hearts" / name).string();

  SaveParameters(folder / "look.toml", look, false);
  EXPECT_EQ(look.spread, ReadParameterFile(folder / "look.toml").spread);
  fs::create_directory(folder / "moved");
  fs::rename(folder / "look.toml", folder / "moved" / "look.toml");
  EXPECT_EQ((folder / "moved" / "hearts" / name).string(),
            ReadParameterFile(folder / "moved" / "look.toml").spread);

  // One that lies elsewhere, by its whole name.
  SaveParameters(folder / "moved" / "other.json", look, false);
  fs::rename(folder / "moved" / "other.json", folder / "other.json");
  EXPECT_EQ(look.spread, ReadParameterFile(folder / "other.json").spread);
}

TEST_F(SavedParameters, ReplaceAFileOnlyWhereTheyMay) {
  SaveParameters(folder / "look.toml", FullLook(), false);
  EXPECT_THROW(SaveParameters(folder / "look.toml", {}, false), glimmerhost::Failure);
  EXPECT_EQ("polygon", ReadParameterFile(folder / "look.toml").values.shape);

  SaveParameters(folder / "look.toml", {}, true);
  EXPECT_EQ("", ReadParameterFile(folder / "look.toml").values.shape);
}

TEST_F(SavedParameters, LeaveNothingWhereTheyCannotBeSaved) {
  Look twoLines;
  twoLines.spread = (folder / "a\nb.png").string();
  Look noUtf8;
  noUtf8.values.shape = "\xff";
  // The same key twice: one would be lost.
  Look twice;
  twice.values.set = {"PRM_Sides=3", "PRM_Sides=4"};
  for (const Look& look : {twoLines, noUtf8, twice}) {
    EXPECT_THROW(SaveParameters(folder / "look.toml", look, false), glimmerhost::Failure);
    EXPECT_THROW(SaveParameters(folder / "look.json", look, false), glimmerhost::Failure);
  }
  EXPECT_THROW(SaveParameters(folder / "none" / "look.toml", {}, false), glimmerhost::Failure);
  EXPECT_THROW(SaveParameters(folder / "look.txt", {}, false), glimmerhost::UsageError);
  EXPECT_EQ(0, folder.FileCount());
}

}  // namespace
