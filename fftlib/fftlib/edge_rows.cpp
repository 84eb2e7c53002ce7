#include "fftlib/fftlib/edge_rows.h"

#include <algorithm>
#include <cstddef>

#include "fftlib/fftlib.h"

namespace lx {
namespace {

void RepeatRow(const DefocusEngine& engine, std::int32_t from, std::int32_t first,
               std::int32_t end) {
  const std::ptrdiff_t width = engine.paddedWidth;
  const double* row = engine.passTarget + from * width;
  for (std::int32_t y = first; y < end; ++y) {
    std::copy_n(row, width, engine.passTarget + y * width);
  }
}

}  // namespace

void RepeatEdgeRows(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  if (first > last) {
    return;
  }
  const std::int32_t frameEnd = engine->offsetY + engine->passSource->height;
  if (first == 0) {
    RepeatRow(*engine, engine->offsetY, 0, engine->offsetY);
  }
  if (engine->offsetY + last == frameEnd - 1) {
    RepeatRow(*engine, frameEnd - 1, frameEnd, engine->paddedHeight);
  }
}

}  // namespace lx
