#include "host/pictures/picture_file.h"

#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::Picture;
using glimmerhost::PictureOutput;
using lx_test::ScratchFolder;

Picture Sample(int width, int height, Alpha alpha = Alpha::kNone, bool grey = false) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.alpha = alpha;
  picture.grey = grey;
  picture.samples.resize(picture.PixelCount() * 4);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] = static_cast<std::uint16_t>((i / (grey ? 4 : 1)) % 256 * 257);
    if (i % 4 == 3) {
      picture.samples[i] = alpha == Alpha::kNone ? 65535 : 30000 + 257;
    }
  }
  return picture;
}

Picture Read(const fs::path& file) {
  std::string warning;
  return glimmerhost::ReadPicture(file, &warning);
}

void Write(const fs::path& file, const Picture& picture, int bits) {
  PictureOutput output(file, true);
  output.Write(picture, bits);
}

TEST(PictureFile, ComesBackAsItWasFor16Bits) {
  const ScratchFolder folder;
  for (const char* name : {"a.png", "a.tif", "a.dpx"}) {
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

TEST(PictureFile, WritesHalfFloatsAsExr) {
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

TEST(PictureFile, CutsFloatsTo0To1AndSaysSo) {
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

TEST(PictureFile, DropsAlphaWhereTheFormatHasNone) {
  const ScratchFolder folder;
  Write(folder / "a.jpg", Sample(16, 16, Alpha::kPremultiplied), 8);
  EXPECT_EQ(Alpha::kNone, Read(folder / "a.jpg").alpha);
}

TEST(PictureFile, CarriesMetadataAndPixelAspectOver) {
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
  EXPECT_NE(std::string::npos, starts(folder / "missing.png").find("no such file"));
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
  for (const char* name : {"a.png", "a.tif", "a.exr", "a.dpx", "a.jpg"}) {
    const fs::path file = folder / name;
    Write(file, Sample(200, 150), 8);
    const auto size = fs::file_size(file);
    for (const double part : {0.9, 0.5, 0.02}) {
      fs::resize_file(file, static_cast<std::uintmax_t>(static_cast<double>(size) * part));
      EXPECT_THROW(Read(file), glimmerhost::Failure) << name << " " << part;
    }
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
