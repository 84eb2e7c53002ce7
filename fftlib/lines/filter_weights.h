// SPDX-License-Identifier: BSD-3-Clause
// The weights of the separable filter: their right half, the middle first.
#pragma once

#include <cstdint>
#include <memory>

#include "baselib/utils/heap.h"

namespace lx {

struct FreeFloats {
  void operator()(float* block) const { lx_free(block); }
};
using Floats = std::unique_ptr<float, FreeFloats>;

// Null where memory has run out, and for a count below 1.
Floats AllocateFloats(std::int32_t count);

// How many weights a type has; 0 for a type that is none, and for a radius that is no number or
// gives more than 8192.
//   type    1 box and 2 triangle, which end at the radius r, with r + 1 values; 3 Gaussian, whose
//           deviation is r / 3; 4 cubic, 5 cubic B-spline, 6 sinc with a cosine window and 9 sinc
//           with a sinc window, which end at 2 r. All but 1 and 2 have 2 r + 1 values, r being
//           rounded up
//   radius  r, pixels; at least 0.01, of a box 1
std::int32_t FilterWeightCount(std::int32_t type, float radius);

// Fills as many values.
//   parameter  of type 4, its slope at 1; 0 for -0.75
void FillFilterWeights(std::int32_t type, float radius, float parameter, std::int32_t length,
                       float* weights);

}  // namespace lx
