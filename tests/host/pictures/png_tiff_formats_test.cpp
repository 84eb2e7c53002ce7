// SPDX-License-Identifier: BSD-3-Clause
// Picture files by libpng and libtiff: of all the kinds that other programs write.
#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <functional>
#include <string>
#include <vector>

#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/host/pictures/odd_pictures.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::Alpha;
using glimmerhost::Picture;
using lx_test::MakePng;
using lx_test::MakeTiff;
using lx_test::OddPng;
using lx_test::OddTiff;
using lx_test::PaletteEntry;
using lx_test::Read;
using lx_test::Sample;
using lx_test::Scattered;
using lx_test::ScratchFolder;
using lx_test::Write;

// What a sample of a picture is, 0 to 65535; channel 3 is alpha.
using Expected = std::function<int(int x, int y, int channel)>;

constexpr int kOpaque = 65535;

// The part of its range that a number of so many bits stands for.
int Part(std::uint32_t raw, int bits) {
  return static_cast<int>(std::lround(raw / (std::ldexp(1.0, bits) - 1.0) * 65535.0));
}

void ExpectSamples(const Expected& expected, const Picture& picture, const std::string& what) {
  ASSERT_EQ(19, picture.width) << what;
  ASSERT_EQ(11, picture.height) << what;
  for (int y = 0; y < picture.height; ++y) {
    for (int x = 0; x < picture.width; ++x) {
      for (int c = 0; c < 4; ++c) {
        const auto at = static_cast<std::size_t>((y * picture.width + x) * 4 + c);
        ASSERT_EQ(expected(x, y, c), picture.samples[at])
            << what << ": x " << x << " y " << y << " channel " << c;
      }
    }
  }
}

std::string Refusal(const fs::path& file) {
  try {
    Read(file);
  } catch (const glimmerhost::Failure& fault) {
    return fault.what();
  }
  return "it was read";
}

TEST(TiffFile, ReadsWholeNumbersOfEveryWidthOrderAndLayout) {
  const ScratchFolder folder;
  for (const int bits : {1, 2, 4, 8, 16, 32}) {
    for (const int tile : {0, 16}) {
      for (const bool apart : {false, true}) {
        for (const char* mode : {"wl", "wb", "w8"}) {
          OddTiff kind;
          kind.bits = bits;
          kind.tile = tile;
          kind.apart = apart;
          kind.mode = mode;
          MakeTiff(folder / "a.tif", kind);

          const Picture picture = Read(folder / "a.tif");

          EXPECT_EQ(bits <= 8 ? 8 : 16, picture.bits);
          EXPECT_EQ(Alpha::kNone, picture.alpha);
          EXPECT_FALSE(picture.grey);
          const auto raw = Scattered(bits);
          ExpectSamples(
              [&](int x, int y, int c) { return c == 3 ? kOpaque : Part(raw(x, y, c), bits); },
              picture,
              std::to_string(bits) + " bits, tile " + std::to_string(tile) +
                  (apart ? ", apart, " : ", together, ") + mode);
        }
      }
    }
  }
}

// Rows that stand in the file as they are come in some at a time, not a strip at a time.
TEST(TiffFile, ReadsStripsOfManyBytes) {
  const ScratchFolder folder;
  for (const char* mode : {"wl", "wb"}) {
    for (const int channels : {1, 3}) {
      OddTiff kind;
      kind.width = 30000;
      kind.height = 7;
      kind.channels = channels;
      kind.photometric = channels == 1 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
      kind.bits = 16;
      kind.mode = mode;
      MakeTiff(folder / "a.tif", kind);

      const Picture picture = Read(folder / "a.tif");

      const auto raw = Scattered(16);
      for (int y = 0; y < kind.height; ++y) {
        for (int x = 0; x < kind.width; ++x) {
          for (int c = 0; c < 3; ++c) {
            const auto at = static_cast<std::size_t>((y * kind.width + x) * 4 + c);
            ASSERT_EQ(raw(x, y, channels == 1 ? 0 : c), picture.samples[at])
                << mode << ", " << channels << " channels: x " << x << " y " << y << " c " << c;
          }
        }
      }
    }
  }
}

TEST(TiffFile, ComesBackFromStripsOfWhichTheLastIsShorter) {
  const ScratchFolder folder;
  for (const int height : {1, 31, 32, 33, 70}) {
    for (const Alpha alpha : {Alpha::kNone, Alpha::kStraight}) {
      for (const bool grey : {false, true}) {
        const Picture picture = Sample(13, height, alpha, grey);
        for (const int bits : {8, 16}) {
          Write(folder / "a.tif", picture, bits);
          const Picture back = Read(folder / "a.tif");
          EXPECT_EQ(height, back.height);
          if (bits == 16) {
            EXPECT_EQ(picture.samples, back.samples) << height << " rows, grey " << grey;
          } else {
            EXPECT_EQ(picture.samples[0], back.samples[0]) << height;
            EXPECT_EQ(picture.samples.end()[-2], back.samples.end()[-2]) << height;
          }
        }
      }
    }
  }
}

TEST(TiffFile, IsRefusedWhereItsStoredRowsEndTooEarly) {
  const ScratchFolder folder;
  OddTiff kind;
  kind.bits = 16;
  kind.mode = "wl";
  MakeTiff(folder / "whole.tif", kind);
  TIFF* const tiff = TIFFOpen((folder / "whole.tif").string().c_str(), "r+");
  ASSERT_NE(nullptr, tiff);
  // A strip that begins where the file is nearly over.
  std::uint64_t* offsets = nullptr;
  ASSERT_EQ(1, TIFFGetField(tiff, TIFFTAG_STRIPOFFSETS, &offsets));
  offsets[2] = fs::file_size(folder / "whole.tif") + 100;
  TIFFRewriteDirectory(tiff);
  TIFFClose(tiff);

  const std::string line = Refusal(folder / "whole.tif");

  EXPECT_NE(std::string::npos, line.find("cut short or broken")) << line;
}

TEST(TiffFile, ReadsEveryCompressionThatItKnows) {
  const ScratchFolder folder;
  for (const std::uint16_t compression :
       {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS}) {
    OddTiff kind;
    kind.compression = compression;
    MakeTiff(folder / "a.tif", kind);
    const auto raw = Scattered(8);
    ExpectSamples([&](int x, int y, int c) { return c == 3 ? kOpaque : Part(raw(x, y, c), 8); },
                  Read(folder / "a.tif"), "compression " + std::to_string(compression));
  }
}

TEST(TiffFile, ReadsGreyFromBlackOrFromWhite) {
  const ScratchFolder folder;
  for (const int bits : {1, 4, 8, 16, 32}) {
    for (const std::uint16_t photometric : {PHOTOMETRIC_MINISBLACK, PHOTOMETRIC_MINISWHITE}) {
      OddTiff kind;
      kind.bits = bits;
      kind.channels = 1;
      kind.photometric = photometric;
      MakeTiff(folder / "a.tif", kind);

      const Picture picture = Read(folder / "a.tif");

      EXPECT_TRUE(picture.grey);
      const auto raw = Scattered(bits);
      ExpectSamples(
          [&](int x, int y, int c) {
            const int light = Part(raw(x, y, 0), bits);
            return c == 3 ? kOpaque : photometric == PHOTOMETRIC_MINISWHITE ? 65535 - light : light;
          },
          picture, std::to_string(bits) + " bits, photometric " + std::to_string(photometric));
    }
  }
}

TEST(TiffFile, LeavesAlphaBesideInvertedGrey) {
  const ScratchFolder folder;
  OddTiff kind;
  kind.channels = 2;
  kind.photometric = PHOTOMETRIC_MINISWHITE;
  kind.extraSamples = {EXTRASAMPLE_UNASSALPHA};
  MakeTiff(folder / "a.tif", kind);
  const auto raw = Scattered(8);
  ExpectSamples(
      [&](int x, int y, int c) {
        return c == 3 ? Part(raw(x, y, 1), 8) : 65535 - Part(raw(x, y, 0), 8);
      },
      Read(folder / "a.tif"), "grey and alpha");
}

TEST(TiffFile, LooksUpPalettes) {
  const ScratchFolder folder;
  for (const int bits : {1, 2, 4, 8}) {
    OddTiff kind;
    kind.bits = bits;
    kind.channels = 1;
    kind.photometric = PHOTOMETRIC_PALETTE;
    MakeTiff(folder / "a.tif", kind);

    const Picture picture = Read(folder / "a.tif");

    EXPECT_FALSE(picture.grey);
    EXPECT_EQ(8, picture.bits);
    const auto raw = Scattered(bits);
    ExpectSamples(
        [&](int x, int y, int c) { return c == 3 ? kOpaque : PaletteEntry(c, raw(x, y, 0)); },
        picture, std::to_string(bits) + " bits");
  }
}

TEST(TiffFile, TakesAlphaForWhatItIsDeclaredAs) {
  struct Case {
    int channels;
    std::vector<std::uint16_t> extra;
    Alpha alpha;
    int channel;
  };
  const Case cases[] = {
      {4, {EXTRASAMPLE_ASSOCALPHA}, Alpha::kPremultiplied, 3},
      {4, {EXTRASAMPLE_UNASSALPHA}, Alpha::kStraight, 3},
      {4, {EXTRASAMPLE_UNSPECIFIED}, Alpha::kNone, -1},
      {4, {}, Alpha::kPremultiplied, 3},
      {5, {EXTRASAMPLE_UNSPECIFIED, EXTRASAMPLE_UNASSALPHA}, Alpha::kStraight, 4},
      {5, {EXTRASAMPLE_ASSOCALPHA, EXTRASAMPLE_UNSPECIFIED}, Alpha::kPremultiplied, 3},
  };
  const ScratchFolder folder;
  for (const Case& c : cases) {
    OddTiff kind;
    kind.bits = 16;
    kind.channels = c.channels;
    kind.extraSamples = c.extra;
    MakeTiff(folder / "a.tif", kind);
    const std::string what = std::to_string(&c - cases);

    const Picture picture = Read(folder / "a.tif");

    EXPECT_EQ(c.alpha, picture.alpha) << what;
    const auto raw = Scattered(16);
    ExpectSamples(
        [&](int x, int y, int channel) {
          return channel < 3     ? static_cast<int>(raw(x, y, channel))
                 : c.channel < 0 ? kOpaque
                                 : static_cast<int>(raw(x, y, c.channel));
        },
        picture, what);
  }
}

TEST(TiffFile, ReadsFloatsAndCutsWhatLiesOutside) {
  const ScratchFolder folder;
  OddTiff kind;
  kind.bits = 32;
  kind.sampleFormat = SAMPLEFORMAT_IEEEFP;
  const auto value = [](int x, int y, int c) { return (x - 2) * 0.0625F + y * 0.03125F + c; };
  kind.sample = [&](int x, int y, int c) { return std::bit_cast<std::uint32_t>(value(x, y, c)); };
  MakeTiff(folder / "a.tif", kind);

  std::string warning;
  const Picture picture = glimmerhost::ReadPicture(folder / "a.tif", &warning);

  EXPECT_NE(std::string::npos, warning.find("outside 0 to 1")) << warning;
  EXPECT_EQ(16, picture.bits);
  ExpectSamples(
      [&](int x, int y, int c) {
        const double light = std::min(std::max<double>(value(x, y, c), 0.0), 1.0);
        return c == 3 ? kOpaque : static_cast<int>(std::lround(light * 65535.0));
      },
      picture, "floats");
}

TEST(TiffFile, ReadsEveryKindOfHalfFloat) {
  struct Case {
    std::uint32_t half;
    int word;
  };
  // One, a half, the smallest with a hidden bit (2^-14), the largest without (1023 x 2^-24),
  // 2^-15; both infinities, no number, both zeros, minus one.
  const Case cases[] = {{0x3C00, 65535}, {0x3800, 32768}, {0x0400, 4}, {0x03FF, 4},
                        {0x0200, 2},     {0x7C00, 65535}, {0xFC00, 0}, {0x7E00, 0},
                        {0x0000, 0},     {0x8000, 0},     {0xBC00, 0}};
  const ScratchFolder folder;
  for (const Case& c : cases) {
    OddTiff kind;
    kind.bits = 16;
    kind.sampleFormat = SAMPLEFORMAT_IEEEFP;
    kind.sample = [&c](int, int, int) { return c.half; };
    MakeTiff(folder / "a.tif", kind);
    EXPECT_EQ(c.word, Read(folder / "a.tif").samples[0]) << std::hex << c.half;
  }
}

TEST(TiffFile, SaysWhatItCannotRead) {
  struct Case {
    std::uint16_t photometric;
    int channels;
    std::uint16_t sampleFormat;
    std::uint16_t compression;
    int bits;
    const char* word;
  };
  const Case cases[] = {
      {PHOTOMETRIC_SEPARATED, 4, SAMPLEFORMAT_UINT, COMPRESSION_NONE, 8, "CMYK"},
      {PHOTOMETRIC_CIELAB, 3, SAMPLEFORMAT_UINT, COMPRESSION_NONE, 8, "Lab"},
      {PHOTOMETRIC_YCBCR, 3, SAMPLEFORMAT_UINT, COMPRESSION_NONE, 8, "YCbCr"},
      {PHOTOMETRIC_RGB, 3, SAMPLEFORMAT_INT, COMPRESSION_NONE, 16, "sample format 2"},
      {PHOTOMETRIC_MINISBLACK, 1, SAMPLEFORMAT_UINT, COMPRESSION_CCITTFAX4, 1, "CCITT Group 4"},
  };
  const ScratchFolder folder;
  for (const Case& c : cases) {
    OddTiff kind;
    kind.photometric = c.photometric;
    kind.channels = c.channels;
    kind.sampleFormat = c.sampleFormat;
    kind.compression = c.compression;
    kind.bits = c.bits;
    kind.width = kind.height = 16;
    MakeTiff(folder / "a.tif", kind);
    const std::string line = Refusal(folder / "a.tif");
    EXPECT_NE(std::string::npos, line.find(c.word)) << line;
  }
}

TEST(TiffFile, RefusesSizesThatTheFileCannotHold) {
  const ScratchFolder folder;
  OddTiff kind;
  kind.compression = COMPRESSION_ADOBE_DEFLATE;
  kind.width = kind.height = 4;
  MakeTiff(folder / "a.tif", kind);
  TIFF* const tiff = TIFFOpen((folder / "a.tif").string().c_str(), "r+");
  ASSERT_NE(nullptr, tiff);
  TIFFSetField(tiff, TIFFTAG_IMAGEWIDTH, 60000);
  TIFFSetField(tiff, TIFFTAG_IMAGELENGTH, 60000);
  TIFFRewriteDirectory(tiff);
  TIFFClose(tiff);

  const std::string line = Refusal(folder / "a.tif");

  EXPECT_NE(std::string::npos, line.find("too small for the size")) << line;
}

TEST(TiffFile, KeepsTheCompressionOfItsInput) {
  const ScratchFolder folder;
  const auto compression = [&folder](const char* name) {
    TIFF* const tiff = TIFFOpen((folder / name).string().c_str(), "r");
    std::uint16_t tag = 0;
    TIFFGetFieldDefaulted(tiff, TIFFTAG_COMPRESSION, &tag);
    TIFFClose(tiff);
    return tag;
  };
  for (const std::uint16_t tag : {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_PACKBITS}) {
    OddTiff kind;
    kind.compression = tag;
    MakeTiff(folder / "a.tif", kind);
    const Picture picture = Read(folder / "a.tif");
    Write(folder / "same.tif", picture, 8);
    Write(folder / "deeper.tif", picture, 16);
    EXPECT_EQ(tag, compression("same.tif"));
    EXPECT_EQ(COMPRESSION_ADOBE_DEFLATE, compression("deeper.tif"));
    EXPECT_EQ(picture.samples, Read(folder / "same.tif").samples);
    EXPECT_EQ(picture.samples, Read(folder / "deeper.tif").samples);
  }
}

TEST(PngFile, ReadsEveryKind) {
  const ScratchFolder folder;
  struct Case {
    int colourType;
    std::vector<int> bits;
  };
  const Case cases[] = {{PNG_COLOR_TYPE_GRAY, {1, 2, 4, 8, 16}},
                        {PNG_COLOR_TYPE_RGB, {8, 16}},
                        {PNG_COLOR_TYPE_GRAY_ALPHA, {8, 16}},
                        {PNG_COLOR_TYPE_RGB_ALPHA, {8, 16}}};
  for (const Case& c : cases) {
    for (const int bits : c.bits) {
      for (const bool interlaced : {false, true}) {
        OddPng kind;
        kind.colourType = c.colourType;
        kind.bits = bits;
        kind.interlaced = interlaced;
        MakePng(folder / "a.png", kind);

        const Picture picture = Read(folder / "a.png");

        const bool grey = (c.colourType & PNG_COLOR_MASK_COLOR) == 0;
        const bool alpha = (c.colourType & PNG_COLOR_MASK_ALPHA) != 0;
        EXPECT_EQ(grey, picture.grey);
        EXPECT_EQ(alpha ? Alpha::kStraight : Alpha::kNone, picture.alpha);
        EXPECT_EQ(bits == 16 ? 16 : 8, picture.bits);
        const auto raw = Scattered(bits);
        ExpectSamples(
            [&](int x, int y, int channel) {
              const int from = channel == 3 ? (grey ? 1 : 3) : grey ? 0 : channel;
              return channel == 3 && !alpha ? kOpaque : Part(raw(x, y, from), bits);
            },
            picture,
            "colour type " + std::to_string(c.colourType) + ", " + std::to_string(bits) + " bits");
      }
    }
  }
}

TEST(PngFile, LooksUpPalettesWithTheirAlpha) {
  const ScratchFolder folder;
  for (const int bits : {1, 2, 4, 8}) {
    for (const int transparent : {-1, 2}) {
      OddPng kind;
      kind.colourType = PNG_COLOR_TYPE_PALETTE;
      kind.bits = bits;
      kind.transparent = transparent;
      MakePng(folder / "a.png", kind);

      const Picture picture = Read(folder / "a.png");

      EXPECT_EQ(transparent < 0 ? Alpha::kNone : Alpha::kStraight, picture.alpha);
      const auto raw = Scattered(bits);
      ExpectSamples(
          [&](int x, int y, int c) {
            const std::uint32_t index = raw(x, y, 0);
            const bool clear = transparent >= 0 && index < 2;
            return c < 3 ? PaletteEntry(c, index) : clear ? 0 : kOpaque;
          },
          picture, std::to_string(bits) + " bits, " + std::to_string(transparent));
    }
  }
}

TEST(PngFile, MakesAlphaOfATransparentColour) {
  const ScratchFolder folder;
  OddPng kind;
  kind.colourType = PNG_COLOR_TYPE_GRAY;
  kind.bits = 4;
  kind.transparent = 9;
  MakePng(folder / "a.png", kind);
  const Picture picture = Read(folder / "a.png");
  EXPECT_EQ(Alpha::kStraight, picture.alpha);
  const auto raw = Scattered(4);
  ExpectSamples(
      [&](int x, int y, int c) {
        const int index = static_cast<int>(raw(x, y, 0));
        return c < 3 ? index * 4369 : index == 9 ? 0 : kOpaque;
      },
      picture, "transparent grey");
}

// Not because the file ends: that is known only when memory for it has been taken.
TEST(PngFile, RefusesAChunkThatClaimsMoreThanTheFileHas) {
  const ScratchFolder folder;
  MakePng(folder / "a.png", {});
  std::fstream file(folder / "a.png", std::ios::binary | std::ios::in | std::ios::out);
  constexpr std::streamoff kBehindHeader = 33;
  file.seekp(kBehindHeader);
  file << std::string("\x7F\xFF\xFF\xFFtEXt", 8);
  file.close();

  const std::string line = Refusal(folder / "a.png");

  EXPECT_NE(std::string::npos, line.find("invalid chunk type")) << line;
}

TEST(PngFile, RefusesSizesThatTheFileCannotHold) {
  const ScratchFolder folder;
  MakePng(folder / "a.png", OddPng{});
  // Width and height stand behind the signature and the head of the first chunk; its check
  // sum, of type and data, behind them.
  std::fstream file(folder / "a.png", std::ios::in | std::ios::out | std::ios::binary);
  unsigned char head[17] = {};
  file.seekg(12);
  file.read(reinterpret_cast<char*>(head), sizeof head);
  head[6] = head[10] = 0xEA;
  const std::uint32_t sum = lx_test::PngCheckSum(head, sizeof head);
  file.seekp(12);
  file.write(reinterpret_cast<const char*>(head), sizeof head);
  for (int shift = 24; shift >= 0; shift -= 8) {
    file.put(static_cast<char>(sum >> shift));
  }
  file.close();

  const std::string line = Refusal(folder / "a.png");

  EXPECT_NE(std::string::npos, line.find("too small for the size")) << line;
}

}  // namespace
