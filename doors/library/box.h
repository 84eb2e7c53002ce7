// SPDX-License-Identifier: BSD-3-Clause
// Rectangles of a picture as the engine has it: from its left column and its bottom row on.
#pragma once

#include <algorithm>
#include <cstdint>

#include "doors/library/glimmerblur.h"

namespace lx {

struct Box {
  std::int32_t x = 0;
  std::int32_t y = 0;
  std::int32_t width = 0;
  std::int32_t height = 0;

  std::int32_t Right() const { return x + width; }  // the first column behind it
  std::int32_t Top() const { return y + height; }
  std::int64_t Pixels() const { return std::int64_t{width} * height; }

  bool Contains(const Box& other) const {
    return other.x >= x && other.y >= y && other.Right() <= Right() && other.Top() <= Top();
  }

  bool operator==(const Box&) const = default;
};

// How far an aperture reads around a pixel. None is below 0.
struct Reach4 {
  std::int32_t left = 0;
  std::int32_t right = 0;
  std::int32_t below = 0;
  std::int32_t above = 0;
};

inline Box Grow(const Box& box, const Reach4& by) {
  return {box.x - by.left, box.y - by.below, box.width + by.left + by.right,
          box.height + by.below + by.above};
}

inline Box Intersect(const Box& one, const Box& other) {
  const std::int32_t x = std::max(one.x, other.x);
  const std::int32_t y = std::max(one.y, other.y);
  return {x, y, std::min(one.Right(), other.Right()) - x, std::min(one.Top(), other.Top()) - y};
}

// Between a caller's rectangle and a box of the whole picture.
inline Box ToBox(const glimmerblur_rect& rect, const glimmerblur_rect& whole, bool topFirst) {
  const std::int32_t row = rect.y - whole.y;
  return {rect.x - whole.x, topFirst ? whole.height - row - rect.height : row, rect.width,
          rect.height};
}

inline glimmerblur_rect ToRect(const Box& box, const glimmerblur_rect& whole, bool topFirst) {
  const std::int32_t row = topFirst ? whole.height - box.Top() : box.y;
  return {whole.x + box.x, whole.y + row, box.width, box.height};
}

}  // namespace lx
