// SPDX-License-Identifier: BSD-3-Clause
// DPX files made byte by byte: what the program reads, and no library of ours writes.
#pragma once

#include <cstdint>
#include <string>

#include "tests/host/pictures/odd_pictures.h"

namespace lx_test {

// How samples of 10 and 12 bits lie in words of 32 and 16 bits; others are as they are.
enum class DpxPacking : std::uint16_t {
  kPacked = 0,  // without a gap, from the low bit of each 32-bit word on
  kFilledHigh,  // three of 10 bits in 32, one of 12 in 16, the gap in the low bits
  kFilledLow,   // the gap in the high bits
};

struct MadeDpx {
  int width = 19;
  int height = 11;
  int channels = 3;  // 1 luma, 3 RGB, 4 RGBA
  int bits = 10;
  DpxPacking packing = DpxPacking::kFilledHigh;
  bool highFirst = true;          // byte order
  std::uint16_t encoding = 0;     // 1 says runs, whatever the samples are
  std::uint32_t linePadding = 0;  // bytes behind each line
  std::uint32_t pictureAt = 2048;
  RawSample sample{};  // Scattered unless given
};

// The file's bytes. Lines of 10 and 12 bits end with a whole 32-bit word.
std::string DpxBytes(const MadeDpx& kind);

}  // namespace lx_test
