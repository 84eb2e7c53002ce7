// SPDX-License-Identifier: BSD-3-Clause
// Files that were valid once: each reads, or is refused in one line.
#include <gtest/gtest.h>
#include <png.h>
#include <tiffio.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <random>
#include <string>
#include <vector>

#include "host/pictures/picture_file.h"
#include "host/support/failure.h"
#include "tests/host/pictures/odd_pictures.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using lx_test::MakePng;
using lx_test::MakeTiff;
using lx_test::OddPng;
using lx_test::OddTiff;
using lx_test::ScratchFolder;

std::string Bytes(const fs::path& file) {
  std::ifstream in(file, std::ios::binary);
  return {std::istreambuf_iterator<char>(in), {}};
}

std::vector<std::string> Seeds(const ScratchFolder& folder) {
  std::vector<std::string> seeds;
  const auto png = [&](const OddPng& kind) {
    MakePng(folder / "seed.png", kind);
    seeds.push_back(Bytes(folder / "seed.png"));
  };
  const auto tiff = [&](const OddTiff& kind) {
    MakeTiff(folder / "seed.tif", kind);
    seeds.push_back(Bytes(folder / "seed.tif"));
  };
  png({});
  png({.bits = 16, .colourType = PNG_COLOR_TYPE_RGB_ALPHA, .interlaced = true});
  png({.bits = 2, .colourType = PNG_COLOR_TYPE_PALETTE, .transparent = 2});
  png({.bits = 4, .colourType = PNG_COLOR_TYPE_GRAY, .transparent = 3});
  for (const std::uint16_t compression :
       {COMPRESSION_NONE, COMPRESSION_LZW, COMPRESSION_ADOBE_DEFLATE, COMPRESSION_PACKBITS}) {
    tiff({.compression = compression});
    tiff({.bits = 16, .compression = compression, .apart = true, .tile = 16, .mode = "wb"});
  }
  tiff({.channels = 1, .bits = 1, .photometric = PHOTOMETRIC_MINISWHITE});
  tiff({.channels = 1, .bits = 4, .photometric = PHOTOMETRIC_PALETTE});
  tiff({.channels = 4, .extraSamples = {EXTRASAMPLE_UNASSALPHA}});
  tiff({.bits = 32, .sampleFormat = SAMPLEFORMAT_IEEEFP, .mode = "w8"});
  return seeds;
}

// Some bytes become others, at the front rather than behind; some files end early.
std::string Mutated(std::string bytes, std::mt19937* random) {
  const auto below = [random](std::size_t limit) { return (*random)() % limit; };
  const std::size_t reach = below(2) == 0 ? bytes.size() : std::min<std::size_t>(bytes.size(), 64);
  for (std::size_t changes = 1 + below(4); changes > 0; --changes) {
    const std::size_t back = below(reach);
    // TIFF directories stand at the end.
    const std::size_t at = below(2) == 0 ? back : bytes.size() - 1 - back;
    const char values[] = {0, 1, '\x7F', '\x80', '\xFF', static_cast<char>(below(256))};
    bytes[at] = values[below(std::size(values))];
  }
  if (below(8) == 0) {
    bytes.resize(1 + below(bytes.size()));
  }
  return bytes;
}

// Check sums would hide what stands behind them: chunks of a PNG file get theirs anew.
void MendCheckSums(std::string* bytes) {
  const auto byte = [bytes](std::size_t at) { return static_cast<unsigned char>((*bytes)[at]); };
  for (std::size_t at = 8; at + 12 <= bytes->size();) {
    const std::size_t size = static_cast<std::size_t>(byte(at)) << 24U | byte(at + 1) << 16 |
                             byte(at + 2) << 8 | byte(at + 3);
    if (size > bytes->size() - at - 12) {
      return;
    }
    const auto* const chunk = reinterpret_cast<const unsigned char*>(bytes->data()) + at + 4;
    const std::uint32_t sum = lx_test::PngCheckSum(chunk, size + 4);
    for (std::size_t i = 0; i < 4; ++i) {
      (*bytes)[at + 8 + size + i] = static_cast<char>(sum >> (24U - 8U * i));
    }
    at += size + 12;
  }
}

void ExpectReadOrRefused(const fs::path& file, const std::string& what) {
  try {
    std::string warning;
    const glimmerhost::Picture picture = glimmerhost::ReadPicture(file, &warning);
    EXPECT_EQ(picture.PixelCount() * 4, picture.samples.size()) << what;
  } catch (const glimmerhost::Failure& fault) {
    const std::string line = fault.what();
    EXPECT_EQ(0U, line.find(file.string() + ": ")) << what << ": " << line;
    EXPECT_EQ(std::string::npos, line.find('\n')) << what << ": " << line;
  }
}

TEST(PngTiffMutation, ReadsOrRefusesInOneLineAndSaysNothingElse) {
  constexpr int kOfEach = 60;
  const ScratchFolder folder;
  const std::vector<std::string> seeds = Seeds(folder);
  std::mt19937 random(20);
  testing::internal::CaptureStderr();
  for (std::size_t seed = 0; seed < seeds.size(); ++seed) {
    for (int i = 0; i < kOfEach; ++i) {
      std::string bytes = Mutated(seeds[seed], &random);
      if (bytes.starts_with("\x89PNG") && i % 4 != 0) {
        MendCheckSums(&bytes);
      }
      std::ofstream(folder / "mutated", std::ios::binary) << bytes;
      ExpectReadOrRefused(folder / "mutated",
                          "seed " + std::to_string(seed) + ", mutation " + std::to_string(i));
    }
  }
  EXPECT_EQ("", testing::internal::GetCapturedStderr());
}

}  // namespace
