// SPDX-License-Identifier: BSD-3-Clause
// The grid's rows above and below the frame.
#pragma once

#include <algorithm>
#include <cstdint>

#include "fftlib/core/grid.h"

namespace lx {

// For an input pass that has done the rows first to last of the frame: repeats the frame's
// first and last grid row beyond it. They go with the range that holds that row: the
// ways share them, and no row is read before it is written.
//   grid  of place.grid's size
template <class Sample>
void RepeatEdgeRows(Sample* grid, const GridPlace& place, std::int32_t first, std::int32_t last) {
  if (first > last) {
    return;
  }
  const auto repeat = [&](std::int32_t from, std::int32_t begin, std::int32_t end) {
    for (std::int32_t y = begin; y < end; ++y) {
      std::copy_n(grid + place.RowStart(from), place.grid.width, grid + place.RowStart(y));
    }
  };
  const std::int32_t frameEnd = place.offsetY + place.frame.height;
  if (first == 0) {
    repeat(place.offsetY, 0, place.offsetY);
  }
  if (place.offsetY + last == frameEnd - 1) {
    repeat(frameEnd - 1, frameEnd, place.grid.height);
  }
}

}  // namespace lx
