// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/fftkernels.h"

namespace lx {
namespace {

// The frequencies step * t + first of a block, t being those of a transform of n.
void Fill(std::uint32_t* table, std::uint32_t n, std::uint32_t step, std::uint32_t first) {
  while (n > 2) {
    const std::uint32_t half = n / 2;
    const std::uint32_t quarter = n / 4;
    Fill(table, half, 2 * step, first);
    Fill(table + half, quarter, 4 * step, first + step);
    table += half + quarter;
    // Below 0 it wraps around, and the mask at the end brings it back.
    first -= step;
    step *= 4;
    n = quarter;
  }
  table[0] = first;
  if (n == 2) {
    table[1] = first + step;
  }
}

}  // namespace

void BuildFrequencyTable(std::uint32_t* table, std::uint32_t n) {
  Fill(table, n, 1, 0);
  for (std::uint32_t p = 0; p < n; ++p) {
    table[p] &= n - 1;
  }
}

}  // namespace lx
