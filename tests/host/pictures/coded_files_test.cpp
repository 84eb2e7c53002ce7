// SPDX-License-Identifier: BSD-3-Clause
// Files with the samples and the compression that were chosen, as another library sees them.
#include <OpenImageIO/imageio.h>
#include <gtest/gtest.h>

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <string>
#include <vector>

#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::Coding;
using glimmerhost::Picture;
using glimmerhost::RangeMapping;
using OIIO::TypeDesc;

// Samples that are all different, and so are not compressed by chance.
Picture Scattered(int width = 40, int height = 30) {
  Picture picture;
  picture.width = width;
  picture.height = height;
  picture.alpha = Alpha::kPremultiplied;
  picture.samples.resize(picture.PixelCount() * 4);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] = static_cast<std::uint16_t>(i * 7919);
  }
  return picture;
}

Coding Floats(int bits) {
  Coding coding(bits);
  coding.floats = true;
  return coding;
}

Coding Compressed(const std::string& compression, int quality = 0) {
  Coding coding;
  coding.compression = compression;
  coding.quality = quality;
  return coding;
}

class CodedFiles : public testing::Test {
 public:
  OIIO::ImageSpec Write(const std::string& name, const Picture& picture, const Coding& coding) {
    glimmerhost::PictureOutput(folder / name, true).Write(picture, coding);
    const auto input = OIIO::ImageInput::open((folder / name).string());
    EXPECT_TRUE(input) << OIIO::geterror();
    if (!input) {
      return {};
    }
    values.resize(picture.PixelCount() * static_cast<std::size_t>(input->spec().nchannels));
    EXPECT_TRUE(input->read_image(0, 0, 0, input->spec().nchannels, TypeDesc::FLOAT, values.data()))
        << input->geterror();
    return input->spec();
  }

  std::uintmax_t Size(const std::string& name) const { return fs::file_size(folder / name); }

  lx_test::ScratchFolder folder;
  std::vector<float> values;  // of the file that was written last
};

// A 16-bit step of a float is exact enough to find its way back; one of a half is not, near 1.
TEST_F(CodedFiles, HoldFloatsOf32BitsWithEachStepOf16) {
  const Picture picture = Scattered();
  for (const char* name : {"out.exr", "out.tif"}) {
    const OIIO::ImageSpec spec = Write(name, picture, Floats(32));

    EXPECT_EQ(TypeDesc::FLOAT, spec.format) << name;
    EXPECT_TRUE(spec.channelformats.empty()) << name;
    for (std::size_t i = 0; i < values.size(); ++i) {
      ASSERT_EQ(static_cast<float>(picture.samples[i]) / 65535.0F, values[i]) << name << " " << i;
    }
  }
}

TEST_F(CodedFiles, HoldHalvesInAnExrUnlessToldOtherwise) {
  EXPECT_EQ(TypeDesc::HALF, Write("a.exr", Scattered(), {}).format);
  EXPECT_EQ(TypeDesc::HALF, Write("b.exr", Scattered(), Floats(16)).format);
}

TEST_F(CodedFiles, HoldFloatsByTheRange) {
  Picture picture = Scattered(2, 1);
  picture.alpha = Alpha::kNone;
  picture.samples = {65535, 0, 16384, 65535, 32768, 1, 65534, 65535};
  picture.range = RangeMapping::Parse("scale:8");
  for (const char* name : {"out.exr", "out.tif"}) {
    Write(name, picture, Floats(32));

    const float expected[] = {8.0F, 0.0F, 2.00003F, 4.00006F, 0.000122F, 7.999878F};
    ASSERT_EQ(std::size(expected), values.size());
    for (std::size_t i = 0; i < values.size(); ++i) {
      EXPECT_NEAR(expected[i], values[i], 1e-5F) << name << " " << i;
    }
  }
}

TEST_F(CodedFiles, OfFloatsKeepStraightAlphaApart) {
  Picture picture = Scattered(1, 1);
  picture.alpha = Alpha::kStraight;
  picture.samples = {65535, 32768, 0, 13107};

  const OIIO::ImageSpec spec = Write("out.tif", picture, Floats(32));

  EXPECT_EQ(4, spec.nchannels);
  std::string warning;
  const Picture back = glimmerhost::ReadPicture(folder / "out.tif", &warning);
  EXPECT_EQ(Alpha::kStraight, back.alpha);
  EXPECT_EQ(picture.samples, back.samples);
}

TEST_F(CodedFiles, HoldTheBitsOfADpx) {
  for (const int bits : {8, 10, 12, 16}) {
    // Of 3 and 4 channels, in rows that 3 divides.
    for (const Alpha alpha : {Alpha::kNone, Alpha::kPremultiplied}) {
      Picture picture = Scattered(alpha == Alpha::kNone ? 40 : 39);
      picture.alpha = alpha;
      const OIIO::ImageSpec spec = Write("out.dpx", picture, Coding(bits));

      EXPECT_EQ(bits, spec.get_int_attribute("oiio:BitsPerSample", bits == 8 ? 8 : 16)) << bits;
      const float step = 1.0F / static_cast<float>((1 << bits) - 1);
      const auto channels = static_cast<std::size_t>(spec.nchannels);
      for (std::size_t i = 0; i < values.size(); ++i) {
        const std::uint16_t sample = picture.samples[i / channels * 4 + i % channels];
        ASSERT_NEAR(static_cast<float>(sample) / 65535.0F, values[i], step)
            << bits << " of " << channels << " at " << i;
      }
    }
  }
}

// The writer would lose the last samples of each row.
TEST_F(CodedFiles, AreNoDpxOf10BitsWhereRowsDoNotEndWithAWord) {
  Picture grey = Scattered();
  grey.grey = true;
  grey.alpha = Alpha::kNone;
  for (const Picture& picture : {Scattered(), grey}) {
    EXPECT_THROW(Write("out.dpx", picture, Coding(10)), glimmerhost::Failure);
    EXPECT_FALSE(fs::exists(folder / "out.dpx"));
  }
  grey.width = 39;
  grey.samples.resize(grey.PixelCount() * 4);
  Write("grey.dpx", grey, Coding(10));
  glimmerhost::ReadReport report;
  Picture ten = glimmerhost::ReadPicture(folder / "grey.dpx", {}, &report);
  ten.width = 13 * 30;
  ten.height = 3;

  const OIIO::ImageSpec same = Write("same.dpx", ten, {});
  ten.width = 1;
  ten.height = 13 * 90;
  const OIIO::ImageSpec other = Write("other.dpx", ten, {});

  EXPECT_EQ(10, same.get_int_attribute("oiio:BitsPerSample", 16));
  EXPECT_EQ(16, other.get_int_attribute("oiio:BitsPerSample", 16));
}

TEST_F(CodedFiles, HaveTheChosenDepthOverTheInputsOwn) {
  Write("ten.dpx", Scattered(39), Coding(10));
  glimmerhost::ReadReport report;
  const Picture ten = glimmerhost::ReadPicture(folder / "ten.dpx", {}, &report);

  EXPECT_EQ(10, Write("same.dpx", ten, {}).get_int_attribute("oiio:BitsPerSample", 16));
  EXPECT_EQ(16, Write("more.dpx", ten, Coding(16)).get_int_attribute("oiio:BitsPerSample", 16));
  EXPECT_EQ(12, Write("some.dpx", ten, Coding(12)).get_int_attribute("oiio:BitsPerSample", 16));
}

TEST_F(CodedFiles, AreCompressedAsChosen) {
  const struct {
    const char* file;
    const char* word;
  } cases[] = {{"a.exr", "none"}, {"a.exr", "rle"},     {"a.exr", "zips"}, {"a.exr", "zip"},
               {"a.exr", "piz"},  {"a.exr", "pxr24"},   {"a.exr", "b44"},  {"a.exr", "b44a"},
               {"a.exr", "dwaa"}, {"a.exr", "dwab"},    {"a.tif", "none"}, {"a.tif", "lzw"},
               {"a.tif", "zip"},  {"a.tif", "packbits"}};
  for (const auto& [file, word] : cases) {
    const OIIO::ImageSpec spec = Write(file, Scattered(), Compressed(word));

    EXPECT_EQ(word, spec.get_string_attribute("compression")) << file;
  }
}

// Of a picture that comes from a file and says how that was compressed.
TEST_F(CodedFiles, AreCompressedAsChosenWhateverTheInputIs) {
  for (const auto& [file, of, word] :
       {std::tuple{"a.exr", "piz", "rle"}, {"a.tif", "lzw", "packbits"}}) {
    Write(file, Scattered(), Compressed(of));
    glimmerhost::ReadReport report;
    const Picture picture = glimmerhost::ReadPicture(folder / file, {}, &report);

    EXPECT_EQ(of, Write(file, picture, {}).get_string_attribute("compression"));
    EXPECT_EQ(word, Write(file, picture, Compressed(word)).get_string_attribute("compression"));
  }
}

TEST_F(CodedFiles, KeepTheCompressionOfAnExrWhateverItsFloatsAre) {
  Write("a.exr", Scattered(), Compressed("piz"));
  glimmerhost::ReadReport report;
  const Picture picture = glimmerhost::ReadPicture(folder / "a.exr", {}, &report);

  EXPECT_EQ("piz", Write("b.exr", picture, Floats(32)).get_string_attribute("compression"));
}

TEST_F(CodedFiles, OfAPngAreStoredFastOrSmall) {
  Picture picture = Scattered(200, 200);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] = static_cast<std::uint16_t>(i / 4 % 200 * 300 + i * i % 7);
  }
  Write("none.png", picture, Compressed("none"));
  Write("fast.png", picture, Compressed("fast"));
  Write("usual.png", picture, {});
  Write("small.png", picture, Compressed("small"));

  EXPECT_LT(picture.samples.size() * 2, Size("none.png"));
  EXPECT_LT(Size("fast.png"), Size("none.png"));
  EXPECT_EQ(Size("fast.png"), Size("usual.png"));
  EXPECT_LT(Size("small.png"), Size("fast.png"));
}

TEST_F(CodedFiles, ShrinkWithTheQualityOfAJpegAndGrowWithTheLevelOfDwaTurnedDown) {
  const Picture picture = Scattered(200, 200);
  Write("low.jpg", picture, Compressed("", 10));
  Write("high.jpg", picture, Compressed("", 95));
  EXPECT_LT(Size("low.jpg"), Size("high.jpg"));

  Write("much.exr", picture, Compressed("dwaa", 500));
  Write("usual.exr", picture, Compressed("dwaa"));
  Write("little.exr", picture, Compressed("dwaa", 5));
  EXPECT_LT(Size("much.exr"), Size("usual.exr"));
  EXPECT_LT(Size("usual.exr"), Size("little.exr"));
}

}  // namespace
