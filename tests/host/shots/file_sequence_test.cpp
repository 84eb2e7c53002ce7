// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/file_sequence.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::FileSequence;
using Frames = std::vector<int>;

std::string File(const std::string& name, int frame) {
  return FileSequence("INPUT", name).File(frame).string();
}

TEST(FileSequence, HasAPlaceForTheFrame) {
  EXPECT_EQ("shot.0007.exr", File("shot.#.exr", 7));
  EXPECT_EQ("shot.0007.exr", File("shot.####.exr", 7));
  EXPECT_EQ("shot.07.exr", File("shot.##.exr", 7));
  EXPECT_EQ("shot.7.exr", File("shot.@.exr", 7));
  EXPECT_EQ("shot.007.exr", File("shot.@@@.exr", 7));
  EXPECT_EQ("shot.0007.exr", File("shot.%04d.exr", 7));
  EXPECT_EQ("shot.7.exr", File("shot.%d.exr", 7));
  EXPECT_EQ("shot7", File("shot%d", 7));
}

TEST(FileSequence, GrowsWithTheNumber) {
  EXPECT_EQ("a.123456.png", File("a.#.png", 123456));
  EXPECT_EQ("a.-005.png", File("a.%04d.png", -5));
}

TEST(FileSequence, IsOneFileWithoutAPlace) {
  const FileSequence one("INPUT", "night 100%.png");
  EXPECT_FALSE(one.HasFrames());
  EXPECT_EQ("night 100%.png", one.File(7));
}

TEST(FileSequence, IsTheFileThatIsThere) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "take#2.png") << "x";
  EXPECT_FALSE(FileSequence("INPUT", (folder / "take#2.png").string()).HasFrames());
  EXPECT_TRUE(FileSequence("INPUT", (folder / "take#3.png").string()).HasFrames());
}

TEST(FileSequence, MayHoldItsFrames) {
  const FileSequence ranged("INPUT", "name.1-100#.exr");
  EXPECT_EQ(100U, ranged.Frames().size());
  EXPECT_EQ("name.0042.exr", ranged.File(42));
  EXPECT_EQ((Frames{1, 3, 9}), FileSequence("INPUT", "name_1-3x2,9%03d.exr").Frames());
  // A number alone belongs to the name, and so does what stands behind another sign.
  EXPECT_EQ("take3.2.0007.exr", File("take3.2.#.exr", 7));
  EXPECT_EQ("take10.0007.exr", File("take10.#.exr", 7));
  EXPECT_EQ("take1-100007.exr", File("take1-10#.exr", 7));
}

TEST(FileSequence, RefusesTwoPlacesAndOneInAFolder) {
  for (const char* name :
       {"a.#.#.png", "a#@.png", "shots#/a.png", "s%04d/a.#.png", "a.#############.png"}) {
    try {
      const FileSequence refused("-o", name);
      ADD_FAILURE() << name;
    } catch (const glimmerhost::UsageError& fault) {
      EXPECT_EQ(0U, std::string(fault.what()).find("-o " + std::string(name) + ": "));
    }
  }
}

TEST(FileSequence, FindsItsFilesInOrder) {
  const lx_test::ScratchFolder folder;
  for (const char* name :
       {"a.0010.png", "a.0002.png", "a.12345.png", "a.-001.png", "a.002.png", "a.00003.png",
        "a.0004.tif", "b.0001.png", "a.0005.png.part", "a.00x1.png", "a..png"}) {
    std::ofstream(folder / name) << "x";
  }
  EXPECT_EQ((Frames{-1, 2, 10, 12345}),
            FileSequence("INPUT", (folder / "a.####.png").string()).Scan());
  EXPECT_EQ((Frames{12345}), FileSequence("INPUT", (folder / "a.%d.png").string()).Scan());
}

// Left out, such a frame would be missed by nobody; taken, times of keyframes would not fit.
TEST(FileSequence, RefusesANumberThatNoFrameHas) {
  for (const char* name :
       {"a.2147483647.png", "a.-2147483648.png", "a.100000000.png", "a.20260101120000.png"}) {
    const lx_test::ScratchFolder folder;
    std::ofstream(folder / "a.1.png") << "x";
    std::ofstream(folder / name) << "x";
    try {
      (void)FileSequence("INPUT", (folder / "a.@.png").string()).Scan();
      ADD_FAILURE() << name;
    } catch (const glimmerhost::Failure& fault) {
      EXPECT_NE(std::string::npos, std::string(fault.what()).find("its frame number must be"))
          << fault.what();
    }
  }
}

TEST(FileSequence, SaysThatThereAreNone) {
  const lx_test::ScratchFolder folder;
  EXPECT_THROW((void)FileSequence("INPUT", (folder / "a.#.png").string()).Scan(),
               glimmerhost::Failure);
  EXPECT_THROW((void)FileSequence("INPUT", (folder / "no/a.#.png").string()).Scan(),
               glimmerhost::Failure);
}

}  // namespace
