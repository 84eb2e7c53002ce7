// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/pixel_aspect.h"

#include <cmath>
#include <cstdint>

namespace glimmerhost {

// By continued fractions, up to a denominator that no real pixel needs.
quantel::cSize2 NearestRatio(double value) {
  constexpr double kLargest = 100000.0;
  if (!(value > 1.0 / kLargest && value < kLargest)) {
    return {1, 1};
  }
  double numerator = 1.0;
  double denominator = 0.0;
  double previousNumerator = 0.0;
  double previousDenominator = 1.0;
  double rest = value;
  for (;;) {
    const double whole = std::floor(rest);
    const double nextNumerator = whole * numerator + previousNumerator;
    const double nextDenominator = whole * denominator + previousDenominator;
    if (nextNumerator > kLargest || nextDenominator > kLargest) {
      break;
    }
    previousNumerator = numerator;
    previousDenominator = denominator;
    numerator = nextNumerator;
    denominator = nextDenominator;
    // Files hold the ratio in single precision.
    if (std::fabs(numerator / denominator - value) < 1e-6 * value || rest == whole) {
      break;
    }
    rest = 1.0 / (rest - whole);
  }
  return {static_cast<std::int32_t>(numerator), static_cast<std::int32_t>(denominator)};
}

}  // namespace glimmerhost
