// SPDX-License-Identifier: BSD-3-Clause
// Picture files of the formats that only OpenImageIO reads and writes.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <chrono>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <thread>
#include <vector>

#include "host/pictures/picture_file.h"
#include "tests/host/glimmerhost/shot_program.h"
#include "tests/host/pictures/made_dpx.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::Alpha;
using glimmerhost::Picture;
using host_test::Bytes;
using lx_test::ExpectCutsRefused;
using lx_test::Read;
using lx_test::Sample;
using lx_test::ScratchFolder;
using lx_test::Write;

TEST(OpenImageIoFormats, ComeBackAsTheyWereAsDpx) {
  const ScratchFolder folder;
  const Picture picture = Sample(13, 7);
  Write(folder / "a.dpx", picture, 16);
  const Picture back = Read(folder / "a.dpx");
  EXPECT_EQ(picture.samples, back.samples);
  EXPECT_EQ(13, back.width);
  EXPECT_EQ(7, back.height);
  EXPECT_EQ(16, back.bits);
  EXPECT_EQ(Alpha::kNone, back.alpha);
}

// Neither the time nor the name under which it is written first is in a file: shots that are cut
// otherwise, or rendered elsewhere, are compared by their bytes.
TEST(OpenImageIoFormats, GiveTheSameBytesEachTime) {
  const ScratchFolder folder;
  std::filesystem::create_directory(folder / "other");
  const std::string endings[] = {"png", "tif", "exr", "dpx", "jpg", "tga", "bmp"};
  for (const std::string& ending : endings) {
    Write(folder / ("a." + ending), Sample(9, 5), 16);
  }
  // Times in files are in seconds.
  std::this_thread::sleep_for(std::chrono::milliseconds(1100));
  for (const std::string& ending : endings) {
    Write(folder / ("other/a." + ending), Sample(9, 5), 16);
    EXPECT_EQ(Bytes(folder / ("a." + ending)), Bytes(folder / ("other/a." + ending))) << ending;
  }
}

TEST(OpenImageIoFormats, CallsADpxByItsOwnName) {
  const ScratchFolder folder;
  Write(folder / "shot.0001.dpx", Sample(9, 5), 16);
  // The header's name begins at byte 36.
  EXPECT_STREQ("shot.0001.dpx", Bytes(folder / "shot.0001.dpx").c_str() + 36);
}

TEST(OpenImageIoFormats, WritesHalfFloatsAsExr) {
  const ScratchFolder folder;
  const Picture picture = Sample(9, 5);
  Write(folder / "a.exr", picture, 16);

  const auto input = OIIO::ImageInput::open((folder / "a.exr").string());
  EXPECT_EQ(OIIO::TypeDesc::HALF, input->spec().format.basetype);
  const Picture back = Read(folder / "a.exr");
  EXPECT_EQ(16, back.bits);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    EXPECT_NEAR(picture.samples[i], back.samples[i], 17) << i;  // half of 2^-11 of the value
  }
}

TEST(OpenImageIoFormats, CutsFloatsTo0To1AndSaysSo) {
  const ScratchFolder folder;
  const std::string file = (folder / "a.exr").string();
  const auto output = OIIO::ImageOutput::create(file);
  ASSERT_TRUE(output->open(file, OIIO::ImageSpec(2, 1, 3, OIIO::TypeDesc::FLOAT)));
  const float samples[] = {-1.0F, 0.5F, 3.0F, 0.0F, 1.0F, 0.25F};
  ASSERT_TRUE(output->write_image(OIIO::TypeDesc::FLOAT, samples));
  ASSERT_TRUE(output->close());

  std::string warning;
  const Picture picture = glimmerhost::ReadPicture(file, &warning);

  EXPECT_NE(std::string::npos, warning.find("outside 0 to 1")) << warning;
  const std::vector<std::uint16_t> expected{0, 32768, 65535, 65535, 0, 65535, 16384, 65535};
  EXPECT_EQ(expected, picture.samples);
}

TEST(OpenImageIoFormats, DropsAlphaWhereTheFormatHasNone) {
  const ScratchFolder folder;
  Write(folder / "a.jpg", Sample(16, 16, Alpha::kPremultiplied), 8);
  EXPECT_EQ(Alpha::kNone, Read(folder / "a.jpg").alpha);
}

Picture Grey(Alpha alpha) {
  Picture grey = Sample(9, 5, alpha);
  grey.grey = true;
  for (std::size_t i = 0; i < grey.samples.size(); i += 4) {
    grey.samples[i + 1] = grey.samples[i + 2] = grey.samples[i];
  }
  return grey;
}

TEST(OpenImageIoFormats, NamesTheAlphaBesideABrightnessAlpha) {
  const ScratchFolder folder;
  const Picture grey = Grey(Alpha::kPremultiplied);
  Write(folder / "a.exr", grey, 16);

  const auto input = OIIO::ImageInput::open((folder / "a.exr").string());
  const std::vector<std::string> expected{"Y", "A"};
  EXPECT_EQ(expected, input->spec().channelnames);
  const Picture back = Read(folder / "a.exr");
  EXPECT_TRUE(back.grey);
  EXPECT_EQ(Alpha::kPremultiplied, back.alpha);
  for (std::size_t i = 0; i < grey.samples.size(); ++i) {
    EXPECT_NEAR(grey.samples[i], back.samples[i], 17) << i;
  }
}

TEST(OpenImageIoFormats, WritesABrightnessAsColoursWhereTheFormatHasNothingElse) {
  const ScratchFolder folder;
  const Picture withAlpha = Grey(Alpha::kPremultiplied);
  Write(folder / "a.dpx", withAlpha, 16);
  EXPECT_EQ(withAlpha.samples, Read(folder / "a.dpx").samples);
  EXPECT_EQ(Alpha::kPremultiplied, Read(folder / "a.dpx").alpha);

  const Picture alone = Grey(Alpha::kNone);
  Write(folder / "a.hdr", alone, 16);
  const Picture back = Read(folder / "a.hdr");
  for (std::size_t i = 0; i < alone.samples.size(); ++i) {
    // Eight bits behind an exponent that three colours share.
    EXPECT_NEAR(alone.samples[i], back.samples[i], 260) << i;
  }
}

TEST(OpenImageIoFormats, CarriesMetadataAndPixelAspectOver) {
  const ScratchFolder folder;
  const std::string file = (folder / "in.tif").string();
  const auto output = OIIO::ImageOutput::create(file);
  OIIO::ImageSpec spec(4, 4, 3, OIIO::TypeDesc::UINT16);
  spec.attribute("PixelAspectRatio", 16.0F / 15.0F);
  spec.attribute("XResolution", 72.0F);
  spec.attribute("YResolution", 72.0F * 16.0F / 15.0F);
  spec.attribute("ImageDescription", "a description");
  spec.attribute("Artist", "somebody");
  ASSERT_TRUE(output->open(file, spec));
  const std::vector<std::uint16_t> samples(48, 1000);
  ASSERT_TRUE(output->write_image(OIIO::TypeDesc::UINT16, samples.data()));
  ASSERT_TRUE(output->close());

  const Picture picture = Read(file);
  EXPECT_EQ(16, picture.pixelAspect.first);
  EXPECT_EQ(15, picture.pixelAspect.second);
  for (const char* name : {"out.tif", "out.png", "out.exr"}) {
    Write(folder / name, picture, 16);
    const auto back = OIIO::ImageInput::open((folder / name).string());
    EXPECT_EQ("a description", back->spec().get_string_attribute("ImageDescription")) << name;
    EXPECT_EQ("somebody", back->spec().get_string_attribute("Artist")) << name;
    // The reader of PNG cuts resolutions to whole dots.
    EXPECT_NEAR(16.0 / 15.0, back->spec().get_float_attribute("PixelAspectRatio", 1), 0.015)
        << name;
  }
}

// All values of 16 bits, as the nearest that the file's depth has: the library would drop low bits.
TEST(OpenImageIoFormats, RoundsToTheNearestCodeOfADpxOf10And12Bits) {
  const ScratchFolder folder;
  for (const int bits : {10, 12}) {
    lx_test::MadeDpx made;
    made.width = 256;
    made.height = 256;
    made.bits = bits;
    std::ofstream(folder / "in.dpx", std::ios::binary) << lx_test::DpxBytes(made);
    Picture picture = Read(folder / "in.dpx");
    for (std::size_t i = 0; i < picture.samples.size(); ++i) {
      picture.samples[i] = static_cast<std::uint16_t>(i / 4);
    }
    // No depth of its own: the input's.
    glimmerhost::PictureOutput(folder / "out.dpx", true).Write(picture, {});

    EXPECT_EQ(bits, Bytes(folder / "out.dpx")[803]);
    const Picture back = Read(folder / "out.dpx");
    const double most = (1 << bits) - 1;
    for (std::size_t value = 0; value < 65536; ++value) {
      const long nearest = std::lround(static_cast<double>(value) / 65535.0 * most);
      ASSERT_EQ(nearest, back.samples[value * 4 + 2] >> (16 - bits)) << value << ", " << bits;
    }
  }
}

TEST(OpenImageIoFormats, AreRefusedWhenCutShort) {
  const ScratchFolder folder;
  for (const char* name : {"a.exr", "a.dpx", "a.jpg"}) {
    ExpectCutsRefused(folder / name);
  }
}

}  // namespace
