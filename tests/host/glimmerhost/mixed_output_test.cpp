// SPDX-License-Identifier: BSD-3-Clause
// Frames of which the blur is only a part.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <string>

#include "tests/host/glimmerhost/shot_program.h"

namespace {

using glimmerhost::Alpha;
using glimmerhost::Picture;
using host_test::Bytes;
using host_test::Outcome;
using host_test::RunProgram;

class MixedOutput : public host_test::ShotProgram {
 public:
  void ExpectDone(const std::string& arguments) {
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(0, outcome.code) << outcome.text;
  }

  // White in the left half, black in the right.
  void WriteMask(const std::string& name, int width, int height) {
    Picture mask;
    mask.width = width;
    mask.height = height;
    mask.samples.assign(mask.PixelCount() * 4, 65535);
    for (std::size_t i = 0; i < mask.PixelCount(); ++i) {
      if (static_cast<int>(i) % width >= width / 2) {
        mask.samples[i * 4] = 0;
      }
    }
    glimmerhost::PictureOutput(folder / name, true).Write(mask, 16);
  }
};

TEST_F(MixedOutput, IsTheSameBytesAsEverAt1) {
  const auto input = WriteInput("in.png", 40, 30, Alpha::kStraight);

  ExpectDone(Render(input, "ever.png", "--radius 5px"));
  ExpectDone(Render(input, "one.png", "--radius 5px --mix 1"));

  EXPECT_EQ(Bytes(folder / "ever.png"), Bytes(folder / "one.png"));
}

TEST_F(MixedOutput, IsTheFrameAt0) {
  const auto input = WriteInput("in.png", 40, 30);

  ExpectDone(Render(input, "none.png", "--radius 5px --mix 0"));

  EXPECT_EQ(host_test::Read(input).samples, host_test::Read(folder / "none.png").samples);
}

TEST_F(MixedOutput, LiesBetweenFrameAndBlur) {
  const auto input = WriteInput("in.png", 40, 30);

  ExpectDone(Render(input, "all.png", "--radius 5px"));
  ExpectDone(Render(input, "part.png", "--radius 5px --mix 0.25"));

  const Picture frame = host_test::Read(input);
  const Picture all = host_test::Read(folder / "all.png");
  const Picture part = host_test::Read(folder / "part.png");
  for (std::size_t i = 0; i < frame.samples.size(); ++i) {
    // In quarters of a step; the nearest is half a step away at most.
    const int exact = 3 * frame.samples[i] + all.samples[i];
    ASSERT_LE(std::abs(4 * part.samples[i] - exact), 2) << i;
  }
}

TEST_F(MixedOutput, IsTheBlurWhereTheMaskIsWhiteAndTheFrameWhereItIsBlack) {
  const auto input = WriteInput("in.png", 40, 30);
  WriteMask("mask.png", 40, 30);

  ExpectDone(Render(input, "all.png", "--radius 5px"));
  ExpectDone(
      Render(input, "masked.png", "--radius 5px --mask '" + (folder / "mask.png").string() + "'"));

  const Picture frame = host_test::Read(input);
  const Picture all = host_test::Read(folder / "all.png");
  const Picture masked = host_test::Read(folder / "masked.png");
  for (std::size_t i = 0; i < frame.samples.size(); ++i) {
    const bool isLeft = i / 4 % 40 < 20;
    ASSERT_EQ((isLeft ? all : frame).samples[i], masked.samples[i]) << i;
  }
}

TEST_F(MixedOutput, OfAShotTakesAMaskForEachFrame) {
  WriteShot(1, 2);
  WriteMask("mask.1.png", 60, 40);
  const std::string options =
      "--radius 3px --quiet --mask '" + (folder / "mask.@.png").string() + "'";

  const Outcome outcome = RunProgram(Shot("out.@.png", options + " --keep-going"));
  EXPECT_EQ(3, outcome.code) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("mask.2.png: not found")) << outcome.text;
  EXPECT_TRUE(std::filesystem::exists(folder / "out.1.png"));

  const Outcome listed = RunProgram(Shot("out.@.png", options + " --dry-run"));
  EXPECT_NE(std::string::npos, listed.text.find("mask.2.png (missing)")) << listed.text;
}

TEST_F(MixedOutput, IsPartOfALook) {
  const auto input = WriteInput("in.png", 40, 30);
  const std::string look = (folder / "look.toml").string();

  ExpectDone(Render(input, "a.png", "--radius 5px --mix 0.5 --save-params '" + look + "'"));
  ExpectDone(Render(input, "b.png", "--params '" + look + "'"));

  EXPECT_EQ(Bytes(folder / "a.png"), Bytes(folder / "b.png"));
  EXPECT_NE(std::string::npos, Bytes(look).find("mix = 0.5")) << Bytes(look);
}

TEST_F(MixedOutput, MayNotReplaceAMaskThatAnotherFrameReads) {
  WriteShot(1, 2);
  const std::string mask = "--mask '" + (folder / "out.1.png").string() + "'";

  ExpectRefusal(Shot("out.@.png", mask), 2, "no frame may write what another reads");
}

}  // namespace
