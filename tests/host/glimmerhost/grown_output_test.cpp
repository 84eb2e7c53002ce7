// SPDX-License-Identifier: BSD-3-Clause
// Elements whose canvas grows by the aperture.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>
#include <vector>

#include "tests/host/glimmerhost/shot_program.h"

namespace {

namespace fs = std::filesystem;
using host_test::Bytes;
using host_test::Outcome;
using host_test::RunProgram;

struct Element {
  OIIO::ImageSpec spec;
  std::vector<float> samples;
};

class GrownOutput : public host_test::Program {
 public:
  // 24 x 14 pixels with alpha, premultiplied, at -2,3 of a display window of 40 x 30. With an edge,
  // the same in the middle of so much more transparent black.
  fs::path WriteElement(const std::string& name, int edge = 0, int channels = 4) {
    fs::path file = folder / name;
    OIIO::ImageSpec spec(24 + 2 * edge, 14 + 2 * edge, channels, OIIO::TypeDesc::HALF);
    spec.x = -2 - edge;
    spec.y = 3 - edge;
    spec.full_width = 40;
    spec.full_height = 30;
    const auto perPixel = static_cast<std::size_t>(channels);
    std::vector<float> samples(static_cast<std::size_t>(spec.width * spec.height) * perPixel, 0.0F);
    for (int y = 0; y < 14; ++y) {
      for (int x = 0; x < 24; ++x) {
        const std::size_t at = static_cast<std::size_t>((y + edge) * spec.width + x + edge);
        for (std::size_t c = 0; c < perPixel; ++c) {
          const int number = (y * 24 + x) * 4 + static_cast<int>(c);
          samples[at * perPixel + c] =
              c == 3 ? 1.0F : static_cast<float>(number * 7919 % 101) / 101.0F;
        }
      }
    }
    const auto output = OIIO::ImageOutput::create(file.string());
    EXPECT_TRUE(output->open(file.string(), spec));
    EXPECT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, samples.data()));
    EXPECT_TRUE(output->close());
    return file;
  }

  Element Take(const std::string& name) const {
    Element element;
    const auto input = OIIO::ImageInput::open((folder / name).string());
    EXPECT_TRUE(input) << name << OIIO::geterror();
    if (input) {
      element.spec = input->spec();
      element.samples.resize(element.spec.image_pixels() *
                             static_cast<std::size_t>(element.spec.nchannels));
      EXPECT_TRUE(input->read_image(0, 0, 0, element.spec.nchannels, OIIO::TypeDesc::FLOAT,
                                    element.samples.data()));
    }
    return element;
  }

  void ExpectDone(const std::string& arguments, const std::string& says = "") {
    const Outcome outcome = RunProgram(arguments);
    EXPECT_EQ(0, outcome.code) << outcome.text;
    EXPECT_EQ(says, outcome.text);
  }
};

// Six more pixels on each side for a radius of five: the same as for an element that was made with
// them.
TEST_F(GrownOutput, IsThatOfAnElementWithSoMuchRoom) {
  const fs::path small = WriteElement("small.exr");
  const fs::path large = WriteElement("large.exr", 6);
  for (const std::string look :
       {"--radius 5px", "--shape polygon --sides 5 --rotation 20 --radius 4.5px --emphasis 30",
        "--shape ellipse --radius-x 2px --radius-y 5px --mix 0.5",
        "--shape image --center 10px,6px --radius-psf1 3px --radius-psf2 5px"}) {
    // A point in pixels counts from the small element's corner.
    std::string ofLarge = look;
    if (const auto at = ofLarge.find("10px,6px"); at != std::string::npos) {
      ofLarge.replace(at, 8, "16px,12px");
    }
    ExpectDone(Render(small, "grown.exr", look + " --quiet --grow --overwrite"));
    ExpectDone(Render(large, "given.exr", ofLarge + " --quiet --overwrite"));

    const Element grown = Take("grown.exr");
    const Element given = Take("given.exr");
    EXPECT_EQ(36, grown.spec.width) << look;
    EXPECT_EQ(given.samples, grown.samples) << look;
  }
}

TEST_F(GrownOutput, OfAnExrHasALargerDataWindowAndTheSameDisplayWindow) {
  WriteElement("in.exr");

  ExpectDone(Render(folder / "in.exr", "out.exr", "--radius 5px --quiet --grow"));

  const OIIO::ImageSpec spec = Take("out.exr").spec;
  EXPECT_EQ(-8, spec.x);
  EXPECT_EQ(-3, spec.y);
  EXPECT_EQ(36, spec.width);
  EXPECT_EQ(26, spec.height);
  EXPECT_EQ(0, spec.full_x);
  EXPECT_EQ(0, spec.full_y);
  EXPECT_EQ(40, spec.full_width);
  EXPECT_EQ(30, spec.full_height);
}

TEST_F(GrownOutput, OfAPictureWithoutWindowsHasItsOwnSizeAsTheDisplayWindow) {
  const auto input = WriteInput("in.png", 24, 14, glimmerhost::Alpha::kStraight);

  ExpectDone(Render(input, "out.exr", "--radius 5px --quiet --grow"));

  const OIIO::ImageSpec spec = Take("out.exr").spec;
  EXPECT_EQ(-6, spec.x);
  EXPECT_EQ(36, spec.width);
  EXPECT_EQ(0, spec.full_x);
  EXPECT_EQ(24, spec.full_width);
  EXPECT_EQ(14, spec.full_height);
}

TEST_F(GrownOutput, OfAFormatWithoutWindowsIsALargerPictureAndOneLineSaysSo) {
  const auto input = WriteInput("in.png", 24, 14, glimmerhost::Alpha::kStraight);
  const auto exr = WriteElement("in.exr");
  const std::string png =
      "glimmerhost: the display window 24 x 14 at 0,0 is not carried: PNG has no place for it; the "
      "output is the data window, 36 x 26 at -6,-6\n";

  ExpectDone(Render(input, "a.png", "--radius 5px --quiet --grow"), png);
  ExpectDone(Render(exr, "b.png", "--radius 5px --quiet --grow"),
             "glimmerhost: the display window 40 x 30 at 0,0 is not carried: PNG has no place for "
             "it; the output is the data window, 36 x 26 at -8,-3\n");

  EXPECT_EQ(36, host_test::Read(folder / "a.png").width);
  EXPECT_EQ(26, host_test::Read(folder / "b.png").height);
}

TEST_F(GrownOutput, OfOneFrameIsThatOfTheWholeShot) {
  for (const int frame : {0, 1, 2}) {
    WriteElement("in." + std::to_string(frame) + ".exr");
  }
  const std::string look = "--radius '0=2px; 2=6px' --quiet --grow ";
  const auto shot = folder / "in.@.exr";

  ExpectDone(Render(shot, "whole.@.exr", look));
  ExpectDone(Render(shot, "part.@.exr", look + "--chunk 1/3"));

  EXPECT_EQ(Bytes(folder / "whole.0.exr"), Bytes(folder / "part.0.exr"));
  EXPECT_EQ(24 + 2 * 7, Take("whole.0.exr").spec.width);
  EXPECT_EQ(24 + 2 * 7, Take("whole.2.exr").spec.width);
}

TEST_F(GrownOutput, KeepsToAMaskOfTheFramesSizeAndIsTransparentBeyondIt) {
  const auto input = WriteElement("in.exr");
  glimmerhost::Picture mask;
  mask.width = 24;
  mask.height = 14;
  mask.samples.assign(mask.PixelCount() * 4, 65535);
  glimmerhost::PictureOutput(folder / "mask.png", false).Write(mask, 8);

  ExpectDone(Render(input, "all.exr", "--radius 5px --quiet --grow"));
  ExpectDone(Render(input, "out.exr",
                    "--radius 5px --quiet --grow --mask '" + (folder / "mask.png").string() + "'"));

  const Element all = Take("all.exr");
  const Element out = Take("out.exr");
  for (std::size_t i = 0; i < out.samples.size(); ++i) {
    const std::size_t x = i / 4 % 36;
    const std::size_t y = i / 4 / 36;
    const bool isInside = x >= 6 && x < 30 && y >= 6 && y < 20;
    ASSERT_EQ(isInside ? all.samples[i] : 0.0F, out.samples[i]) << x << "," << y;
  }
}

TEST_F(GrownOutput, NeedsAlpha) {
  const auto input = WriteElement("in.exr", 0, 3);

  ExpectProgramRefusal(Render(input, "out.exr", "--radius 5px --grow"), 1,
                       "--grow needs a picture with alpha");
}

TEST_F(GrownOutput, CountsForTheGrid) {
  const auto input = WriteElement("in.exr");

  const Outcome small = RunProgram(Render(input, "out.exr", "--grow --radius 5px --explain"));

  EXPECT_NE(std::string::npos, small.text.find("grows by 6 pixels on each side, to 36 x 26"))
      << small.text;
  // Fast has grids that just hold frame and margin: 36 + 2 x 6 and 26 + 2 x 6.
  EXPECT_NE(std::string::npos, small.text.find("Grid                48 x 40")) << small.text;
}

}  // namespace
