// SPDX-License-Identifier: BSD-3-Clause
// Renders of EXR files with more than one picture in them.
#include <gtest/gtest.h>

#include <cstddef>
#include <string>
#include <vector>

#include "tests/host/glimmerhost/program.h"
#include "tests/host/pictures/exr_layers.h"

namespace {

using host_test::Outcome;
using host_test::RunProgram;
using lx_test::ExrPart;
using lx_test::Jumping;
using lx_test::ReadExr;
using OIIO::TypeDesc;

double Depth(int x, int y) { return 3.0 + (x * 7 + y * 5) % 40; }

// A picture whose seeds are those of its channels.
ExrPart Plain(int red, int green, int blue) {
  ExrPart part;
  part.channels = {{"R", TypeDesc::HALF, Jumping(red)},
                   {"G", TypeDesc::HALF, Jumping(green)},
                   {"B", TypeDesc::HALF, Jumping(blue)}};
  return part;
}

ExrPart Layered() {
  ExrPart part = Plain(1, 2, 3);
  part.channels.push_back({"diffuse.R", TypeDesc::HALF, Jumping(4)});
  part.channels.push_back({"diffuse.G", TypeDesc::HALF, Jumping(5)});
  part.channels.push_back({"diffuse.B", TypeDesc::HALF, Jumping(6)});
  part.channels.push_back({"Z", TypeDesc::FLOAT, Depth});
  return part;
}

class LayeredOutput : public host_test::Program {
 public:
  void SetUp() override {
    lx_test::MakeExr(folder / "in.exr", {Layered()});
    lx_test::MakeExr(folder / "main.exr", {Plain(1, 2, 3)});
    lx_test::MakeExr(folder / "diffuse.exr", {Plain(4, 5, 6)});
  }

  ReadExr Rendered(const std::string& input, const std::string& options) {
    const Outcome outcome =
        RunProgram(Render(folder / input, "out.exr", "--quiet --overwrite " + options));
    EXPECT_EQ(0, outcome.code) << outcome.text;
    EXPECT_EQ("", outcome.text);
    return lx_test::Read(folder / "out.exr");
  }
};

constexpr const char* kLook = "--shape polygon --sides 5 --radius 4px --emphasis 40 ";

TEST_F(LayeredOutput, BlursThePictureAloneAndKeepsTheRest) {
  const ReadExr in = lx_test::Read(folder / "in.exr");
  const ReadExr expected = Rendered("main.exr", kLook);

  const ReadExr out = Rendered("in.exr", kLook);

  for (const char* name : {"R", "G", "B"}) {
    EXPECT_TRUE(expected.bits.at(name) == out.bits.at(name)) << name;
  }
  for (const char* name : {"diffuse.R", "diffuse.G", "diffuse.B", "Z"}) {
    EXPECT_TRUE(in.bits.at(name) == out.bits.at(name)) << name;
  }
}

TEST_F(LayeredOutput, HasLayersThatAreBlurredAsThePictureIs) {
  for (const std::string& options :
       {std::string(kLook), kLook + std::string("--range log:4"), kLook + std::string("--mix 0.3"),
        std::string("--shape ellipse --radius-x 6px --radius-y 2px")}) {
    const ReadExr main = Rendered("main.exr", options);
    const ReadExr diffuse = Rendered("diffuse.exr", options);

    const ReadExr out = Rendered("in.exr", options + " --blur-channels 'diffuse.*'");

    for (const char* name : {"R", "G", "B"}) {
      EXPECT_TRUE(main.bits.at(name) == out.bits.at(name)) << name << " " << options;
      EXPECT_TRUE(diffuse.bits.at(name) == out.bits.at(std::string("diffuse.") + name))
          << name << " " << options;
    }
    EXPECT_TRUE(lx_test::Read(folder / "in.exr").bits.at("Z") == out.bits.at("Z"));
  }
}

// Of the image shape without a picture of its own, the aperture is cut out of the main picture.
TEST_F(LayeredOutput, GivesItsLayersTheApertureOfThePicture) {
  const std::string look = "--shape image --radius-psf1 3px --radius-psf2 5px ";
  const ReadExr expected =
      Rendered("diffuse.exr", look + "--spread '" + (folder / "main.exr").string() + "'");

  const ReadExr out = Rendered("in.exr", look + "--blur-channels 'diffuse.*'");

  EXPECT_TRUE(expected.bits.at("G") == out.bits.at("diffuse.G"));
}

// 3 to 42, which the effect sees as 0 to 1: a picture of these numbers without emphasis.
TEST_F(LayeredOutput, BlursNumbersInProportion) {
  ExrPart unit;
  unit.channels = {{"Y", TypeDesc::FLOAT, [](int x, int y) { return (Depth(x, y) - 3.0) / 39.0; }}};
  lx_test::MakeExr(folder / "unit.exr", {unit});
  const ReadExr expected =
      Rendered("unit.exr", "--shape polygon --sides 5 --radius 4px --bits float");

  const ReadExr out = Rendered("in.exr", kLook + std::string("--blur-channels Z"));

  EXPECT_EQ(TypeDesc(TypeDesc::FLOAT), out.types.at("Z"));
  EXPECT_FALSE(lx_test::Read(folder / "in.exr").bits.at("Z") == out.bits.at("Z"));
  for (std::size_t i = 0; i < out.values.at("Z").size(); ++i) {
    ASSERT_NEAR(3.0 + 39.0 * expected.values.at("Y")[i], out.values.at("Z")[i], 1e-4) << i;
  }
}

TEST_F(LayeredOutput, GrowsItsLayersToo) {
  ExrPart part = Layered();
  part.channels.push_back({"A", TypeDesc::HALF, [](int, int) { return 1.0; }});
  part.channels.push_back({"diffuse.A", TypeDesc::HALF, [](int, int) { return 1.0; }});
  lx_test::MakeExr(folder / "element.exr", {part});
  ExrPart alone = Plain(4, 5, 6);
  alone.channels.push_back({"A", TypeDesc::HALF, [](int, int) { return 1.0; }});
  lx_test::MakeExr(folder / "alone.exr", {alone});
  const std::string look = "--radius 4px --grow ";
  const ReadExr expected = Rendered("alone.exr", look);

  const ReadExr out = Rendered("element.exr", look + "--blur-channels 'diffuse.*'");

  EXPECT_EQ(40, out.spec.width);
  for (const char* name : {"R", "G", "B", "A"}) {
    EXPECT_TRUE(expected.bits.at(name) == out.bits.at(std::string("diffuse.") + name)) << name;
  }
}

TEST_F(LayeredOutput, SaysThatAnotherFormatHasNoSuchChannels) {
  const Outcome outcome =
      RunProgram(Render(folder / "in.exr", "out.png", "--radius 2px --quiet --blur-channels Z"));

  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ(
      "glimmerhost: --blur-channels has no effect: PNG holds the picture's own channels alone\n"
      "glimmerhost: channels Z, diffuse.R, diffuse.G, diffuse.B are not carried: red, green, blue "
      "and alpha are\n",
      outcome.text);
}

TEST_F(LayeredOutput, RefusesAPatternThatNoChannelHasAndPipes) {
  ExpectProgramRefusal(Render(folder / "in.exr", "out.exr", "--radius 2px --blur-channels 'spec*'"),
                       1,
                       "--blur-channels spec*: no channel has such a name; there are R, G, B, Z, ");
  ExpectRefusal("render - -o x.#.exr --blur-channels Z", 2,
                "--blur-channels needs a file as INPUT");
  ExpectRefusal("render x.#.exr -o - --blur-channels Z", 2, "--blur-channels needs a file as -o");
  ExpectRefusal("render x.#.exr -o y.#.exr --blur-channels Z,", 2,
                "--blur-channels must be names of channels");
}

}  // namespace
