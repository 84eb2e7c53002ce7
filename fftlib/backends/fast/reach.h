// SPDX-License-Identifier: BSD-3-Clause
// What an aperture reaches from a set of pixels: an exact dilation, on rows of bits.
//
// A row's bits begin with the pixels left of the frame. Behind them stand, level by level, the same
// row with every bit that is set within 2, 4, 8 ... places to its right: any stretch of the
// aperture's row is then two of these.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fast/mask_extent.h"
#include "imagelib/imagelib.h"

namespace lx {

// 64 pixels a word, the first in the lowest bit.
using BitWord = std::uint64_t;
constexpr std::int64_t BitWords(std::int64_t pixels) { return (pixels + 63) / 64; }

struct Aperture {
  MaskExtent extent;
  std::int32_t middleX;
  std::int32_t middleY;
  const BitWord* bits;  // rows of the frame's width, from the mask's first row on
};

// Sets the bits of the mask's first channel, in the rows of its extent.
//   bits  as many rows as the mask has
void MarkMask(const ImageRec& mask, const MaskExtent& extent, BitWord* bits);

class Reach {
 public:
  //   repeats  whether the frame's edge goes on for ever; else there is nothing around it
  Reach(const Aperture& aperture, std::int32_t width, std::int32_t height, bool repeats);

  // Words that a row of pixels takes, all levels included.
  std::int64_t RowWords() const { return words_ * levels_; }

  // Marks the numbers of a row that are at least low and below high.
  //   row  RowWords() words
  void MarkRow(const double* values, double low, double high, BitWord* row) const;

  // Row y of what the aperture reaches.
  //   marked   the rows of the frame, RowWords() words each
  //   reached  BitWords(width) words; bits behind the width are undefined
  void FindRow(const BitWord* marked, std::int32_t y, BitWord* reached) const;

 private:
  void AddStretches(const BitWord* row, std::int32_t maskRow, BitWord* reached) const;

  Aperture aperture_;
  std::int32_t width_;
  std::int32_t height_;
  bool repeats_;
  MaskReach across_;
  std::int64_t words_;  // of a level
  std::int64_t levels_;
};

}  // namespace lx
