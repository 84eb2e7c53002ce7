// SPDX-License-Identifier: BSD-3-Clause
// Lengths in the plane, the same bits on every system.
#pragma once

#include <cmath>
#include <limits>

namespace lx {

// How far (x, y) is from the origin. By operations that every system rounds alike: C libraries
// round their own function for it each in its way. Infinite where one of both is, as theirs. The
// squares must be doubles: nothing is scaled, so below 1e-150 digits are lost, and above 1e150 it
// is infinite.
inline double DistanceOf(double x, double y) {
  if (std::isinf(x) || std::isinf(y)) {
    return std::numeric_limits<double>::infinity();
  }
  return std::sqrt(x * x + y * y);
}

}  // namespace lx
