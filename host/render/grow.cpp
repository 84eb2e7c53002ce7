// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/grow.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <utility>
#include <vector>

#include "fftlib/core/grid.h"
#include "host/looks/foresight.h"
#include "host/support/failure.h"

namespace glimmerhost {

int GrowthOf(const KeyframedValues& values, const ShotSpan& span, int width) {
  if (!span.IsKnown() && values.IsAnimated()) {
    throw UsageError(
        "--grow with keyframes needs --shot FIRST-LAST: all frames grow as far as the largest "
        "aperture of the shot");
  }
  const int first = span.first.value_or(1);
  const int last = values.IsAnimated() ? *span.last : first;
  double largest = 0.0;
  for (int frame = first; frame <= last; ++frame) {
    largest = std::max(largest, ApertureRadius(values.At(frame), width));
  }
  // What the engine itself leaves for it: half a pixel or a whole one is lost where an aperture
  // sits beside its point.
  return lx::OutlineMargin(largest);
}

namespace {

template <class Sample>
void GrowSamples(const Picture& picture, int by, std::vector<Sample>* samples) {
  if (samples->empty()) {
    return;
  }
  const auto width = static_cast<std::size_t>(picture.width);
  const auto height = static_cast<std::size_t>(picture.height);
  const auto edge = static_cast<std::size_t>(by);
  const std::size_t grown = width + 2 * edge;
  std::vector<Sample> larger(grown * (height + 2 * edge) * 4);
  for (std::size_t y = 0; y < height; ++y) {
    std::copy_n(samples->data() + y * width * 4, width * 4,
                larger.data() + ((y + edge) * grown + edge) * 4);
  }
  *samples = std::move(larger);
}

}  // namespace

void GrowPicture(int by, Picture* picture) {
  if (by == 0) {
    return;
  }
  GrowSamples(*picture, by, &picture->samples);
  GrowSamples(*picture, by, &picture->floats);
  picture->width += 2 * by;
  picture->height += 2 * by;
  picture->grownBy += by;
}

}  // namespace glimmerhost
