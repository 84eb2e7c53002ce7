// SPDX-License-Identifier: BSD-3-Clause
// How a line of complex numbers is transformed: its stages, their twiddles, and where each
// frequency comes to lie.
//
// A stage of radix r takes a line of n numbers apart into r lines of n / r, which stand one behind
// the other; each goes through the stages that follow by itself. The order of frequencies is never
// restored. A line of 6, radices 3 and 2:
//
//   position   0 1 | 2 3 | 4 5
//   frequency  0 3 | 1 4 | 2 5
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "fftkernels/mixed_radix/quick_sizes.h"

namespace lx {

struct LinePlan {
  struct Stage {
    std::int32_t radix;
    std::int32_t length;  // of the lines that it takes apart
    // For number j of a line's first part, of length / radix, the turns of the outputs 1 to
    // radix - 1: cosine and sine of -2 pi j k / length. Null for the last stage, which has none.
    const double* twiddles;
  };

  std::int32_t length = 0;
  std::int32_t count = 0;  // of stages, two at least
  std::array<Stage, kMostStages> stages{};

  std::int32_t FrequencyAt(std::int32_t position) const;
  std::int32_t PositionOf(std::int32_t frequency) const;
};

// How many doubles the twiddles of a length take.
constexpr std::int64_t CountTwiddles(std::int32_t length) {
  const Radices radices = TakeApart(length);
  std::int64_t count = 0;
  std::int64_t rest = length;
  for (std::int32_t s = 0; s + 1 < radices.count; ++s) {
    const std::int32_t radix = radices.radix[static_cast<std::size_t>(s)];
    rest /= radix;
    count += rest * (radix - 1) * 2;
  }
  return count;
}

// The plan of a length that TakeApart knows.
//   table  CountTwiddles(length) doubles, which the plan goes on to borrow
LinePlan MakeLinePlan(std::int32_t length, double* table);

}  // namespace lx
