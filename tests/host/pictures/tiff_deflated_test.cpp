// SPDX-License-Identifier: BSD-3-Clause
// Deflated blocks of TIFF files, whole and broken.
#include "host/pictures/png_tiff/tiff_deflated.h"

#include <gtest/gtest.h>
#include <tiffio.h>
#include <zlib.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <string>
#include <vector>

#include "host/pictures/picture_file.h"
#include "host/pictures/png_tiff/inflate.h"
#include "host/support/failure.h"
#include "tests/host/pictures/odd_pictures.h"
#include "tests/host/pictures/picture_samples.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::DeflatedBlocks;
using glimmerhost::TiffLibrary;
using lx_test::MakeTiff;
using lx_test::OddTiff;
using lx_test::ScratchFolder;
using Bytes = std::vector<std::uint8_t>;

Bytes Deflated(const Bytes& bytes) {
  uLongf size = compressBound(bytes.size());
  Bytes deflated(size);
  EXPECT_EQ(Z_OK, compress(deflated.data(), &size, bytes.data(), bytes.size()));
  deflated.resize(size);
  return deflated;
}

Bytes Counted(std::size_t count) {
  Bytes bytes(count);
  for (std::size_t i = 0; i < count; ++i) {
    bytes[i] = static_cast<std::uint8_t>(i * i / 7);
  }
  return bytes;
}

using Inflating = bool (*)(const Bytes&, std::uint8_t*, std::size_t);
constexpr Inflating kBoth[] = {glimmerhost::Inflate, glimmerhost::InflateSlowly};

TEST(Inflate, GivesBackWhatWasDeflated) {
  const Bytes bytes = Counted(100000);
  for (const Inflating inflating : kBoth) {
    Bytes back(bytes.size());
    EXPECT_TRUE(inflating(Deflated(bytes), back.data(), back.size()));
    EXPECT_EQ(bytes, back);
  }
}

// Writers fill the last strip up, and libtiff goes on reading their files.
TEST(Inflate, TakesTheFirstOfMoreBytesThanAreWanted) {
  const Bytes bytes = Counted(100000);
  for (const Inflating inflating : kBoth) {
    Bytes back(300);
    EXPECT_TRUE(inflating(Deflated(bytes), back.data(), back.size()));
    EXPECT_TRUE(std::equal(back.begin(), back.end(), bytes.begin()));
  }
}

TEST(Inflate, PassesOverWhatStandsBehindTheSum) {
  const Bytes bytes = Counted(500);
  Bytes deflated = Deflated(bytes);
  deflated.insert(deflated.end(), {0, 1, 2, 3, 4, 5, 6, 7});
  for (const Inflating inflating : kBoth) {
    Bytes back(bytes.size());
    EXPECT_TRUE(inflating(deflated, back.data(), back.size()));
    EXPECT_EQ(bytes, back);
  }
}

TEST(Inflate, RefusesFewerBytesThanAreWanted) {
  const Bytes deflated = Deflated(Counted(500));
  for (const Inflating inflating : kBoth) {
    Bytes back(501);
    EXPECT_FALSE(inflating(deflated, back.data(), back.size()));
  }
}

TEST(Inflate, RefusesWhatDoesNotAgreeWithItsSum) {
  Bytes deflated = Deflated(Counted(500));
  deflated.back() ^= 1U;
  for (const Inflating inflating : kBoth) {
    Bytes back(500);
    EXPECT_FALSE(inflating(deflated, back.data(), back.size()));
    EXPECT_FALSE(inflating(deflated, back.data(), 20));
  }
}

TEST(Inflate, RefusesBytesThatEndBeforeTheirSumDoes) {
  const Bytes whole = Deflated(Counted(500));
  for (std::size_t size = 0; size < whole.size(); ++size) {
    for (const Inflating inflating : kBoth) {
      Bytes back(500);
      EXPECT_FALSE(
          inflating(Bytes(whole.begin(), whole.begin() + static_cast<std::ptrdiff_t>(size)),
                    back.data(), back.size()))
          << size;
    }
  }
}

// Each block as it is by libtiff, which is right of whole files.
void ExpectAsByLibtiff(const fs::path& file, const std::string& what) {
  TiffLibrary ours(file, TiffLibrary::Use::kRead);
  TiffLibrary theirs(file, TiffLibrary::Use::kRead);
  ASSERT_NE(nullptr, ours.Tiff()) << what;
  DeflatedBlocks blocks(ours);
  ASSERT_TRUE(blocks.IsKnown()) << what;
  const bool tiled = TIFFIsTiled(theirs.Tiff()) != 0;
  const std::uint32_t count =
      tiled ? TIFFNumberOfTiles(theirs.Tiff()) : TIFFNumberOfStrips(theirs.Tiff());
  const tmsize_t most = tiled ? TIFFTileSize(theirs.Tiff()) : TIFFStripSize(theirs.Tiff());
  const tmsize_t row = tiled ? TIFFTileRowSize(theirs.Tiff()) : TIFFScanlineSize(theirs.Tiff());
  for (std::uint32_t i = 0; i < count; ++i) {
    Bytes expected(static_cast<std::size_t>(most));
    const tmsize_t read = tiled ? TIFFReadEncodedTile(theirs.Tiff(), i, expected.data(), most)
                                : TIFFReadEncodedStrip(theirs.Tiff(), i, expected.data(), most);
    ASSERT_LT(0, read) << what;
    Bytes got(expected.size());
    ASSERT_TRUE(blocks.Read(i, static_cast<std::size_t>(read / row), &got)) << what;
    EXPECT_EQ(expected, got) << what << ", block " << i;
    EXPECT_TRUE(blocks.IsWhole(i)) << what << ", block " << i;
  }
}

TEST(DeflatedTiff, HasTheSamplesThatLibtiffGives) {
  const ScratchFolder folder;
  for (const int bits : {8, 16, 32, 64}) {
    for (const std::uint16_t predictor :
         {PREDICTOR_NONE, PREDICTOR_HORIZONTAL, PREDICTOR_FLOATINGPOINT}) {
      for (const int channels : {1, 2, 3, 4, 5}) {
        for (const bool apart : {false, true}) {
          for (const int tile : {0, 16}) {
            for (const char* mode : {"wl", "wb"}) {
              const bool floats = predictor == PREDICTOR_FLOATINGPOINT;
              if (floats && bits == 8) {
                continue;
              }
              OddTiff kind;
              kind.bits = bits;
              kind.channels = channels;
              kind.photometric = channels < 3 ? PHOTOMETRIC_MINISBLACK : PHOTOMETRIC_RGB;
              kind.compression = COMPRESSION_ADOBE_DEFLATE;
              kind.predictor = predictor;
              kind.sampleFormat = floats ? SAMPLEFORMAT_IEEEFP : SAMPLEFORMAT_UINT;
              kind.apart = apart;
              kind.tile = tile;
              kind.mode = mode;
              kind.sample = lx_test::Scattered(std::min(bits, 32));
              const int extra = channels - (channels < 3 ? 1 : 3);
              kind.extraSamples.assign(static_cast<std::size_t>(extra), 0);
              MakeTiff(folder / "a.tif", kind);
              ExpectAsByLibtiff(folder / "a.tif",
                                std::to_string(bits) + " bits, predictor " +
                                    std::to_string(predictor) + ", " + std::to_string(channels) +
                                    (apart ? " planes" : " channels") + ", tile " +
                                    std::to_string(tile) + ", mode " + mode);
            }
          }
        }
      }
    }
  }
}

TEST(DeflatedTiff, HasTheSamplesOfAFileWhoseBitsAreReversed) {
  const ScratchFolder folder;
  OddTiff kind;
  kind.compression = COMPRESSION_ADOBE_DEFLATE;
  kind.fillOrder = FILLORDER_LSB2MSB;
  MakeTiff(folder / "a.tif", kind);
  ExpectAsByLibtiff(folder / "a.tif", "reversed");
}

std::string Text(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

// libtiff would give out noise for many of them.
TEST(DeflatedTiff, OfWhichAnyByteIsZeroedIsRefusedOrTheSame) {
  const ScratchFolder folder;
  const fs::path file = folder / "a.tif";
  for (const int tile : {0, 16}) {
    OddTiff kind;
    kind.compression = COMPRESSION_ADOBE_DEFLATE;
    kind.predictor = PREDICTOR_HORIZONTAL;
    kind.tile = tile;
    MakeTiff(file, kind);
    const std::vector<std::uint16_t> whole = lx_test::Read(file).samples;
    const std::string bytes = Text(file);
    // The directory stands behind the blocks.
    const auto end = static_cast<std::size_t>(*reinterpret_cast<const std::uint32_t*>(&bytes[4]));
    int refused = 0;
    int changed = 0;
    for (std::size_t at = 8; at < end; ++at) {
      changed += bytes[at] == 0 ? 0 : 1;
      std::string broken = bytes;
      broken[at] = 0;
      std::ofstream(file, std::ios::binary) << broken;
      try {
        EXPECT_EQ(whole, lx_test::Read(file).samples) << "byte " << at;
      } catch (const glimmerhost::Failure& fault) {
        ++refused;
        EXPECT_NE(std::string::npos, std::string(fault.what()).find("check sum")) << fault.what();
      }
    }
    // A few of the bytes between the blocks mean nothing.
    EXPECT_LT(changed * 9 / 10, refused);
  }
}

}  // namespace
