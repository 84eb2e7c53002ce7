// SPDX-License-Identifier: BSD-3-Clause
// Shots whose frames say more than their samples.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/host/glimmerhost/program.h"

namespace {

using host_test::Outcome;
using host_test::RunProgram;

class CarriedShot : public host_test::Program {
 public:
  // 24 x 14 pixels, with or without windows that say that 20 x 10 of them are the picture.
  void WriteFrame(const std::string& name, int frame, bool windows) {
    const std::string file = (folder / name).string();
    OIIO::ImageSpec spec(24, 14, 3, OIIO::TypeDesc::HALF);
    if (windows) {
      spec.x = -2;
      spec.y = -2;
      spec.full_width = 20;
      spec.full_height = 10;
    }
    const int timecode[] = {frame, 0};
    spec.attribute("smpte:TimeCode", OIIO::TypeTimeCode, timecode);
    spec.attribute("lens", 35.0F);
    std::vector<float> samples(std::size_t{24} * 14 * 3);
    for (std::size_t i = 0; i < samples.size(); ++i) {
      samples[i] = static_cast<float>(i * 7919 % 101) / 101.0F;
    }
    const auto output = OIIO::ImageOutput::create(file);
    ASSERT_TRUE(output->open(file, spec));
    ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, samples.data()));
    ASSERT_TRUE(output->close());
  }

  // Frames 1 to 4, with a timecode that counts.
  void WriteShot() {
    for (int frame = 1; frame <= 4; ++frame) {
      WriteFrame("in." + std::to_string(frame) + ".exr", frame, true);
    }
  }

  Outcome RenderShot(const std::string& output, const std::string& options = "") {
    return RunProgram(Render(folder / "in.@.exr", output, "--radius 3px " + options));
  }
};

std::size_t Occurrences(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST_F(CarriedShot, HasEachFramesOwnTimecodeAndWindows) {
  WriteShot();

  const Outcome outcome = RenderShot("out.@.exr", "--quiet");

  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ("", outcome.text);
  for (int frame = 1; frame <= 4; ++frame) {
    const auto input =
        OIIO::ImageInput::open((folder / ("out." + std::to_string(frame) + ".exr")).string());
    ASSERT_TRUE(input);
    const OIIO::ImageSpec& spec = input->spec();
    EXPECT_EQ("00:00:00:0" + std::to_string(frame),
              spec.find_attribute("smpte:TimeCode")->get_string());
    EXPECT_EQ(-2, spec.x);
    EXPECT_EQ(-2, spec.y);
    EXPECT_EQ(24, spec.width);
    EXPECT_EQ(20, spec.full_width);
    EXPECT_EQ(10, spec.full_height);
  }
}

TEST_F(CarriedShot, SaysOnceWhatNoFrameOfItKeepsAndCountsTheRest) {
  WriteShot();

  const Outcome outcome = RenderShot("out.@.png", "--quiet");

  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ(
      "glimmerhost: frame 1: the display window 20 x 10 at 0,0 is not carried: PNG has no place "
      "for it; the output is the data window, 24 x 14 at -2,-2\n"
      "glimmerhost: frame 1: timecode 00:00:00:01 is not carried: PNG has no place for it\n"
      "glimmerhost: frame 1: attribute lens is not carried: PNG has no place for it\n"
      "glimmerhost: not carried in 4 frames: attribute lens\n"
      "glimmerhost: not carried in 4 frames: the display window\n"
      "glimmerhost: not carried in 4 frames: timecode\n",
      outcome.text);
}

TEST_F(CarriedShot, TellsMachinesOfEveryFrame) {
  WriteShot();

  const Outcome outcome = RenderShot("out.@.png", "--progress json");

  EXPECT_EQ(4U, Occurrences(outcome.text, R"("remarks":["the display window)")) << outcome.text;
  EXPECT_EQ(1U, Occurrences(outcome.text, "timecode 00:00:00:03 is not carried"));
}

TEST_F(CarriedShot, RendersAllThatTheDataWindowHoldsAndNothingElse) {
  WriteFrame("windows.exr", 1, true);
  WriteFrame("plain.exr", 1, false);
  for (const char* name : {"windows", "plain"}) {
    const std::string stem = name;
    ASSERT_EQ(0,
              RunProgram(Render(folder / (stem + ".exr"), stem + ".out.exr", "--radius 3px")).code);
  }

  EXPECT_EQ(host_test::Read(folder / "plain.out.exr").samples,
            host_test::Read(folder / "windows.out.exr").samples);
}

}  // namespace
