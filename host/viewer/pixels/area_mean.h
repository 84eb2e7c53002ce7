// SPDX-License-Identifier: BSD-3-Clause
// Means of the rectangles of a picture that a screen's pixels cover.
#pragma once

#include <cstddef>
#include <vector>

#include "host/pictures/picture.h"

namespace glimmerhost {

// Pixels of a row or a column that fall into one pixel of the screen after the other, each with the
// part of them that does. The weights of one of the screen sum up to 1.
//
//    first     first + 1   first + 2   first + 3
//   |   ####|##########|##########|###     |
//    small      whole      whole    small       and 0 up to as many as the longest has
struct Stretches {
  int taps = 0;  // weights of each
  std::vector<int> first;
  std::vector<float> weights;

  const float* WeightsOf(std::size_t i) const {
    return weights.data() + i * static_cast<std::size_t>(taps);
  }
};

// Each of the same length, without a gap. What is beyond 0 or size is cut off.
//   start   where the first begins. The middles of all lie between 0 and size
//   length  1 or more
Stretches CutIntoStretches(double start, double length, int count, int size);

// Rows of means, four numbers a pixel: samples as the picture has them, 0 to 65535 or floats.
class AreaMean {
 public:
  // Both must outlive it.
  AreaMean(const Picture& picture, const Stretches& columns);

  // The means of the rows that stretch i of the rows has, one for each of the columns.
  void Row(const Stretches& rows, std::size_t i, float* means);

 private:
  const Picture& picture_;
  const Stretches& columns_;
  int endColumn_;
  std::vector<float> sums_;  // of columns, with as many more as weights may reach beyond
};

}  // namespace glimmerhost
