// SPDX-License-Identifier: BSD-3-Clause
// The padded grid of a transform, and the place of the frame in it.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

namespace lx {

// The longest side of a grid that is padded to a power of two, and of any grid.
inline constexpr std::int32_t kLargestPaddedSize = 8192;
inline constexpr std::int32_t kLargestGridSide = 32768;

// Of a frame or a grid, in samples; -1 where there is none yet.
struct Size {
  std::int32_t width = -1;
  std::int32_t height = -1;

  bool operator==(const Size&) const = default;
};

// 1 for n below 2, else the smallest power of two not below n.
//   exponent  receives its exponent; may be null
constexpr std::int64_t NextPowerOfTwo(std::int64_t n, std::int32_t* exponent = nullptr) {
  std::int64_t power = 1;
  std::int32_t bits = 0;
  // The bound is far above every size in use; it keeps the shift defined for any n.
  while (power < n && bits < 62) {
    power *= 2;
    ++bits;
  }
  if (exponent != nullptr) {
    *exponent = bits;
  }
  return power;
}

// The side of a grid that holds a side of a frame with a margin on both ends; a margin below 0
// counts as 0.
constexpr std::int64_t PaddedSide(std::int32_t side, std::int32_t margin) {
  return NextPowerOfTwo(side + 2 * std::int64_t{std::max(margin, 0)});
}

// Whether a grid may have that side, the longest of its kind being given.
constexpr bool IsGridSide(std::int64_t side, std::int32_t largest) {
  return side >= 2 && side <= largest;
}

// The margin that an aperture needs: its larger radius in pixels rounded up, plus 1.
// A radius too large for any grid, or not finite, gives a margin that no grid can hold.
inline std::int32_t OutlineMargin(double larger) {
  using Limits = std::numeric_limits<std::int32_t>;
  const double rounded = std::ceil(larger);
  if (!(rounded <= kLargestGridSide)) {
    return Limits::max() / 4;
  }
  return (rounded > Limits::min() ? static_cast<std::int32_t>(rounded) : Limits::min()) + 1;
}

// Sides as they would be, whether or not a grid may have them.
struct GridSides {
  std::int64_t width = 0;
  std::int64_t height = 0;

  bool operator==(const GridSides&) const = default;

  // By width first: an order for lists.
  constexpr bool operator<(const GridSides& other) const {
    return width != other.width ? width < other.width : height < other.height;
  }

  // Whether neither side is longer.
  constexpr bool FitsInto(const GridSides& other) const {
    return width <= other.width && height <= other.height;
  }
};

constexpr bool IsAllowedGrid(const GridSides& grid, std::int32_t largest) {
  return IsGridSide(grid.width, largest) && IsGridSide(grid.height, largest);
}

// Where a frame lies in a grid: its pixel (x, y) in row offsetY + y, column offsetX + x.
//
//   +--------------------------+  Rows stand one after another, without padding. The margin
//   |      margin repeats      |  repeats the frame's edge, or holds zeros.
//   |    +---------------+     |
//   |    | frame, at     |     |
//   |    | offsetX, Y    |     |
//   |    +---------------+     |
//   +--------------------------+
struct GridPlace {
  Size frame;
  Size grid;
  std::int32_t offsetX = -1;
  std::int32_t offsetY = -1;

  bool Fits() const {
    return offsetX >= 0 && offsetY >= 0 && offsetX + frame.width <= grid.width &&
           offsetY + frame.height <= grid.height;
  }

  // How far it moves a mask that its middle comes to sample (0, 0): the mask's pixel x goes to
  // column x - MiddleX(), whatever the grid.
  std::int32_t MiddleX() const { return (frame.width + 1) / 2; }
  std::int32_t MiddleY() const { return (frame.height + 1) / 2; }

  // The first sample of the grid's row y, counted from its first.
  std::ptrdiff_t RowStart(std::int32_t y) const { return std::ptrdiff_t{y} * grid.width; }

  // The sample of the frame's first pixel in its row y.
  std::ptrdiff_t FrameStart(std::int32_t y) const { return RowStart(offsetY + y) + offsetX; }
};

// In the middle; towards smaller x and y where that is half a sample off.
inline GridPlace PlaceFrame(Size frame, Size grid) {
  return {frame, grid, (grid.width - frame.width) / 2, (grid.height - frame.height) / 2};
}

}  // namespace lx
