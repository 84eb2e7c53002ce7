// SPDX-License-Identifier: BSD-3-Clause
// Means of the rectangles of a picture that a screen's pixels cover.
#pragma once

#include <vector>

#include "host/pictures/picture.h"

namespace glimmerhost {

// Pixels of a row or a column that fall into one pixel of the screen: the first and the last with
// the part of them that does, all between them whole.
//
//    first     first + 1             last
//   |   ####|##########|##########|###     |
//    <firstWeight>                 <lastWeight>
struct Stretch {
  int first;
  int last;
  float firstWeight;
  float lastWeight;  // 0 where the first is the last
  float share;       // 1 / the sum of all weights
};

// One stretch after the other, each of the same length; what is beyond 0 or size is cut off.
//   start   where the first begins. The middles of all lie between 0 and size
//   length  1 or more
std::vector<Stretch> CutIntoStretches(double start, double length, int count, int size);

// The means of one row of the screen, four a pixel: samples as the picture has them, 0 to 65535 or
// floats.
//   sums   room for the sums of columns, kept from row to row
//   means  four for each column
void MeanRow(const Picture& picture, const std::vector<Stretch>& columns, const Stretch& rows,
             std::vector<float>* sums, float* means);

}  // namespace glimmerhost
