// The grid's rows above and below the frame.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fftlib/fftlib.h"

namespace lx {

// For an input pass that has done the rows first to last of the frame: repeats the frame's
// first and last grid row beyond it. They go with the range that holds them, so that the
// ways share them and no row is read before it is written.
//   Sample  what the grid in passTarget holds
template <class Sample>
void RepeatEdgeRows(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  if (first > last) {
    return;
  }
  const auto row = [engine](std::int32_t y) {
    return static_cast<Sample*>(engine->passTarget) + std::ptrdiff_t{y} * engine->paddedWidth;
  };
  const auto repeat = [&](std::int32_t from, std::int32_t begin, std::int32_t end) {
    for (std::int32_t y = begin; y < end; ++y) {
      std::copy_n(row(from), engine->paddedWidth, row(y));
    }
  };
  const std::int32_t frameEnd = engine->offsetY + engine->passSource->height;
  if (first == 0) {
    repeat(engine->offsetY, 0, engine->offsetY);
  }
  if (engine->offsetY + last == frameEnd - 1) {
    repeat(frameEnd - 1, frameEnd, engine->paddedHeight);
  }
}

}  // namespace lx
