// SPDX-License-Identifier: BSD-3-Clause
// Pictures of floating point: what comes in, what is said of it, and what goes out.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <limits>
#include <string>
#include <vector>

#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Picture;
using glimmerhost::PictureOutput;
using glimmerhost::RangeMapping;
using glimmerhost::ReadOptions;
using glimmerhost::ReadReport;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

ReadOptions Options(const std::string& range) { return {.range = RangeMapping::Parse(range)}; }

class FloatPicture : public testing::Test {
 public:
  fs::path Put(const std::string& name, int channels, const std::vector<float>& samples,
               const std::vector<std::string>& names = {}) {
    const std::string file = (folder / name).string();
    const auto output = OIIO::ImageOutput::create(file);
    const int width = static_cast<int>(samples.size()) / channels;
    OIIO::ImageSpec spec(width, 1, channels, OIIO::TypeDesc::FLOAT);
    if (!names.empty()) {
      spec.channelnames = names;
    }
    EXPECT_TRUE(output->open(file, spec));
    EXPECT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, samples.data()));
    EXPECT_TRUE(output->close());
    return file;
  }

  std::vector<float> Floats(const std::string& name) {
    const auto input = OIIO::ImageInput::open((folder / name).string());
    std::vector<float> samples(
        static_cast<std::size_t>(input->spec().width * input->spec().nchannels));
    EXPECT_TRUE(
        input->read_image(0, 0, 0, input->spec().nchannels, OIIO::TypeDesc::FLOAT, samples.data()));
    return samples;
  }

  lx_test::ScratchFolder folder;
  ReadReport report;
};

TEST_F(FloatPicture, CountsWhatItCutsAndWhatIsNoNumber) {
  for (const char* name : {"a.exr", "a.tif"}) {
    const fs::path file =
        Put(name, 3, {-0.5F, 2.0F, 1.5F, kInfinity, -kInfinity, kNoNumber, 0.0F, 1.0F, 0.5F});
    ReadReport said;

    const Picture picture = glimmerhost::ReadPicture(file, {}, &said);

    const std::vector<std::uint16_t> expected{0, 65535, 65535, 65535, 65535, 0,
                                              0, 65535, 0,     65535, 32768, 65535};
    EXPECT_EQ(expected, picture.samples) << name;
    EXPECT_EQ(3U, said.cut);
    EXPECT_EQ(2U, said.infinite);
    EXPECT_EQ(1U, said.notNumbers);
    const std::vector<std::string> lines{
        file.string() + ": 5 samples outside 0 to 1 were cut to that range, 2 of them infinite",
        file.string() + ": 1 sample not a number was taken as 0"};
    EXPECT_EQ(lines, said.lines);
  }
}

TEST_F(FloatPicture, SaysNothingOfOneThatFits) {
  const fs::path file = Put("a.exr", 3, {0.0F, 0.5F, 16.0F});

  glimmerhost::ReadPicture(file, Options("scale:16"), &report);

  EXPECT_TRUE(report.lines.empty());
}

TEST_F(FloatPicture, DoesNotCountChannelsThatAreNotThePictures) {
  const fs::path file =
      Put("a.exr", 5, {0.1F, 0.2F, 0.3F, 1.0F, 5000.0F}, {"R", "G", "B", "A", "Z"});

  glimmerhost::ReadPicture(file, {}, &report);

  EXPECT_EQ(0U, report.cut);
}

TEST_F(FloatPicture, MapsColoursAndNeverAlpha) {
  const fs::path file = Put("a.exr", 4, {0.0F, 4.0F, 8.0F, 0.5F}, {"R", "G", "B", "A"});

  const Picture picture = glimmerhost::ReadPicture(file, Options("scale:8"), &report);

  const std::vector<std::uint16_t> expected{0, 32768, 65535, 32768};
  EXPECT_EQ(expected, picture.samples);
}

TEST_F(FloatPicture, SaysWhichRangeSamplesWereCutTo) {
  const fs::path file = Put("a.exr", 3, {0.0F, 2.5F, 3.0F});

  glimmerhost::ReadPicture(file, Options("log:2.5"), &report);

  ASSERT_EQ(1U, report.lines.size());
  EXPECT_EQ(file.string() + ": 1 sample outside 0 to 2.5 was cut to that range", report.lines[0]);
}

TEST_F(FloatPicture, GoesBackToItsRangeInAFileOfFloats) {
  // A step of 16 bits and half a float's: 2^-11 of the value.
  const std::vector<float> samples{0.0F, 0.01F, 0.5F, 0.25F, 2.0F, 15.9F, 16.0F, 1.0F};
  Put("in.exr", 4, samples, {"R", "G", "B", "A"});
  for (const char* range : {"scale:16", "log:16"}) {
    Picture picture = glimmerhost::ReadPicture(folder / "in.exr", Options(range), &report);

    PictureOutput(folder / "out.exr", true).Write(picture, 16);

    const std::vector<float> back = Floats("out.exr");
    ASSERT_EQ(samples.size(), back.size());
    for (std::size_t i = 0; i < samples.size(); ++i) {
      EXPECT_NEAR(samples[i], back[i], 16.0F / 65535.0F + samples[i] / 2048.0F) << range << i;
    }
    EXPECT_EQ(0.0F, back[0]);
    EXPECT_EQ(16.0F, back[6]);
    EXPECT_EQ(0.25F, back[3]);
  }
}

TEST_F(FloatPicture, LeavesWholeNumbersAlone) {
  const std::vector<std::uint16_t> samples{1000, 30000, 65535, 65535};
  Picture picture;
  picture.width = 1;
  picture.height = 1;
  picture.samples = samples;
  PictureOutput(folder / "in.png", true).Write(picture, 16);

  const Picture back = glimmerhost::ReadPicture(folder / "in.png", Options("scale:16"), &report);
  PictureOutput(folder / "out.exr", true).Write(back, 16);

  EXPECT_EQ(samples, back.samples);
  EXPECT_EQ(1.0F, Floats("out.exr")[2]);
}

TEST(MissingInput, IsAnInputThatIsNotThereAndNoOther) {
  const lx_test::ScratchFolder folder;
  ReadReport report;
  EXPECT_THROW(glimmerhost::ReadPicture(folder / "no.exr", {}, &report), glimmerhost::MissingInput);
  EXPECT_THROW(glimmerhost::ReadPicture(folder / "no" / "such.exr", {}, &report),
               glimmerhost::MissingInput);
  try {
    glimmerhost::ReadPicture(folder.Path(), {}, &report);
    ADD_FAILURE();
  } catch (const glimmerhost::MissingInput&) {
    ADD_FAILURE();
  } catch (const glimmerhost::Failure&) {
  }
}

}  // namespace
