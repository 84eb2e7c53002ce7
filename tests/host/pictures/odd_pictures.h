// SPDX-License-Identifier: BSD-3-Clause
// PNG and TIFF files of kinds that the program reads and does not write.
#pragma once

#include <cstddef>
#include <cstdint>
#include <filesystem>
#include <functional>
#include <string>
#include <vector>

namespace lx_test {

// The number that a sample is in the file, below 2 to the power of its bits.
using RawSample = std::function<std::uint32_t(int x, int y, int channel)>;

// Numbers that fill the range, and differ from neighbour to neighbour.
RawSample Scattered(int bits);

struct OddTiff {
  int width = 19;
  int height = 11;
  int channels = 3;
  int bits = 8;
  std::uint16_t photometric = 2;  // RGB
  std::uint16_t compression = 1;  // none
  std::uint16_t predictor = 1;    // none
  std::uint16_t fillOrder = 1;    // the high bit of a byte first
  std::uint16_t sampleFormat = 1;
  bool apart = false;      // a plane for every channel
  int tile = 0;            // the side of tiles; 0 for strips of four rows
  std::string mode = "w";  // "wb" and "wl" are the byte orders, "w8" the large kind
  std::vector<std::uint16_t> extraSamples{};
  RawSample sample{};  // of floats the bits; Scattered unless given
};

// Fails the test that calls it if libtiff refuses.
void MakeTiff(const std::filesystem::path& file, const OddTiff& kind);

// Of the palettes of both formats, in 16 bits: channel 0 is red.
std::uint16_t PaletteEntry(int channel, std::uint32_t index);

struct OddPng {
  int width = 19;
  int height = 11;
  int bits = 8;
  int colourType = 2;  // RGB
  bool interlaced = false;
  int transparent = -1;  // grey or colour that is clear, or how many of the palette's entries are
  RawSample sample{};    // Scattered unless given
};

void MakePng(const std::filesystem::path& file, const OddPng& kind);

// What stands behind a chunk: the sum of its type and what it holds.
std::uint32_t PngCheckSum(const unsigned char* bytes, std::size_t count);

}  // namespace lx_test
