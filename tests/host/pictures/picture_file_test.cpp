// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/picture_file.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::Picture;
using glimmerhost::PictureOutput;
using lx_test::ExpectCutsRefused;
using lx_test::Read;
using lx_test::Sample;
using lx_test::ScratchFolder;
using lx_test::Write;

TEST(PictureFile, ComesBackAsItWasFor16Bits) {
  const ScratchFolder folder;
  for (const char* name : {"a.png", "a.tif", "a.TIFF"}) {
    const Picture picture = Sample(13, 7);
    Write(folder / name, picture, 16);
    const Picture back = Read(folder / name);
    EXPECT_EQ(picture.samples, back.samples) << name;
    EXPECT_EQ(13, back.width);
    EXPECT_EQ(7, back.height);
    EXPECT_EQ(16, back.bits);
    EXPECT_EQ(Alpha::kNone, back.alpha);
  }
}

TEST(PictureFile, ComesBackAsItWasFor8Bits) {
  const ScratchFolder folder;
  for (const char* name : {"a.png", "a.tif"}) {
    const Picture picture = Sample(13, 7);  // multiples of 257: whole bytes
    Write(folder / name, picture, 8);
    const Picture back = Read(folder / name);
    EXPECT_EQ(picture.samples, back.samples) << name;
    EXPECT_EQ(8, back.bits);
  }
}

TEST(PictureFile, RoundsWordsToTheNearestByte) {
  const ScratchFolder folder;
  Picture picture = Sample(2, 1);
  picture.samples = {128, 129, 385, 65535, 386, 65406, 65407, 65535};
  Write(folder / "a.png", picture, 8);

  const Picture back = Read(folder / "a.png");

  const std::vector<std::uint16_t> expected{0, 257, 257, 65535, 514, 65278, 65535, 65535};
  EXPECT_EQ(expected, back.samples);
}

TEST(PictureFile, KeepsStraightAlphaStraight) {
  const ScratchFolder folder;
  for (const char* name : {"a.png", "a.tif"}) {
    const Picture picture = Sample(5, 4, Alpha::kStraight);
    Write(folder / name, picture, 16);
    const Picture back = Read(folder / name);
    EXPECT_EQ(Alpha::kStraight, back.alpha) << name;
    EXPECT_EQ(picture.samples, back.samples) << name;
  }
}

TEST(PictureFile, KeepsPremultipliedAlphaInFormatsThatHaveIt) {
  const ScratchFolder folder;
  const Picture picture = Sample(5, 4, Alpha::kPremultiplied);
  Write(folder / "a.tif", picture, 16);
  const Picture back = Read(folder / "a.tif");
  EXPECT_EQ(Alpha::kPremultiplied, back.alpha);
  EXPECT_EQ(picture.samples, back.samples);
}

TEST(PictureFile, KeepsGreyGrey) {
  const ScratchFolder folder;
  for (const Alpha alpha : {Alpha::kNone, Alpha::kStraight}) {
    const Picture picture = Sample(5, 4, alpha, true);
    Write(folder / "a.png", picture, 16);
    const Picture back = Read(folder / "a.png");
    EXPECT_TRUE(back.grey);
    EXPECT_EQ(alpha, back.alpha);
    EXPECT_EQ(picture.samples, back.samples);
  }
}

TEST(PictureFile, SaysWhatIsWrongWithAnInput) {
  const ScratchFolder folder;
  const auto refusal = [](const fs::path& file) -> std::string {
    try {
      Read(file);
    } catch (const glimmerhost::Failure& fault) {
      return fault.what();
    }
    return "";
  };
  const auto starts = [&](const fs::path& file) {
    const std::string line = refusal(file);
    EXPECT_EQ(0U, line.find(file.string() + ": ")) << line;
    EXPECT_EQ(std::string::npos, line.find('\n')) << line;
    return line;
  };
  EXPECT_NE(std::string::npos, starts(folder / "missing.png").find("not found"));
  EXPECT_NE(std::string::npos, starts(folder / ".").find("not a file"));
  std::ofstream(folder / "empty.png");
  EXPECT_NE(std::string::npos, starts(folder / "empty.png").find("empty"));
  std::ofstream(folder / "text.png") << "this is no picture, whatever its name says";
  starts(folder / "text.png");
  std::ofstream(folder / "text.txt") << "this is no picture either";
  starts(folder / "text.txt");
}

TEST(PictureFile, RefusesFilesThatAreCutShort) {
  const ScratchFolder folder;
  for (const char* name : {"a.png", "a.tif"}) {
    ExpectCutsRefused(folder / name);
  }
}

TEST(PictureFile, ReadsWhatAFileIsWhateverItsName) {
  const ScratchFolder folder;
  const Picture picture = Sample(5, 4);
  Write(folder / "a.png", picture, 16);
  Write(folder / "b.tif", picture, 16);
  fs::rename(folder / "a.png", folder / "c.tif");
  fs::rename(folder / "b.tif", folder / "d");

  EXPECT_EQ(picture.samples, Read(folder / "c.tif").samples);
  EXPECT_EQ(picture.samples, Read(folder / "d").samples);
}

TEST(PictureFile, TakesNamesOfAnyScript) {
  const ScratchFolder folder;
  const Picture picture = Sample(5, 4);
  for (const char8_t* name : {u8"\u00fcber.png", u8"\u0416\u65e5.tif"}) {
    const fs::path file = folder.Path() / fs::path(name);
    Write(file, picture, 16);
    EXPECT_TRUE(fs::exists(file));
    EXPECT_EQ(picture.samples, Read(file).samples);
  }
}

TEST(PictureOutput, RefusesBeforeThereIsAPicture) {
  const ScratchFolder folder;
  std::ofstream(folder / "there.png") << "x";
  EXPECT_THROW(PictureOutput(folder / "there.png", false), glimmerhost::Failure);
  EXPECT_NO_THROW(PictureOutput(folder / "there.png", true));
  EXPECT_THROW(PictureOutput(folder / "a.xyz", false), glimmerhost::UsageError);
  EXPECT_THROW(PictureOutput(folder / "noending", false), glimmerhost::UsageError);
  EXPECT_THROW(PictureOutput(folder / "no/such/a.png", false), glimmerhost::Failure);
  fs::create_directory(folder / "folder.png");
  EXPECT_THROW(PictureOutput(folder / "folder.png", true), glimmerhost::Failure);
}

TEST(PictureOutput, LeavesNothingButTheFile) {
  const ScratchFolder folder;
  Write(folder / "a.png", Sample(4, 4), 8);
  EXPECT_EQ(1, folder.FileCount());
}

}  // namespace
