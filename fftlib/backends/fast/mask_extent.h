// SPDX-License-Identifier: BSD-3-Clause
// Where a mask is not zero.
#pragma once

#include <algorithm>
#include <cstdint>

#include "imagelib/imagelib.h"

namespace lx {

// Pixels of a mask, both ends inclusive. A mask of zeros counts as its middle pixel.
struct MaskExtent {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
  bool isEmpty;

  std::int32_t Rows() const { return bottom - top + 1; }
};

// Of the first channel.
MaskExtent FindExtent(const ImageRec& mask);

// The pixel of a side that a PSF's middle is: (0, 0) after its shift. Intended: past the middle of
// an odd side, where grids of even sides put it.
constexpr std::int32_t MaskMiddle(std::int32_t side) { return (side + 1) / 2; }

// How far an aperture reaches from its middle. Pixel x of a frame comes from x - right to x - left,
// so that a frame is read before and after its ends.
struct MaskReach {
  std::int32_t before;
  std::int32_t after;
};
constexpr MaskReach ReachOf(std::int32_t first, std::int32_t last, std::int32_t middle) {
  return {std::max(last - middle, 0), std::max(middle - first, 0)};
}

}  // namespace lx
