// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/fftkernels/twiddles.h"

#include <cmath>
#include <utility>

namespace lx {
namespace {

// exp(2 pi i k / block), from an angle of at most an eighth of the circle, so that equal
// numbers come out equal.
std::pair<long double, long double> CosineAndSine(int k, int block) {
  constexpr long double kFullCircle = 6.283185307179586476925286766559005768L;
  const int quarter = block / 4;
  const int quadrant = k / quarter % 4;
  const int rest = k % quarter;
  const bool past = 2 * rest > quarter;  // beyond its eighth
  const long double angle =
      kFullCircle * static_cast<long double>(past ? quarter - rest : rest) / block;
  long double cosine = std::cos(angle);
  long double sine = std::sin(angle);
  if (past) {
    std::swap(cosine, sine);
  }
  switch (quadrant) {
    case 0:
      return {cosine, sine};
    case 1:
      return {-sine, cosine};
    case 2:
      return {-cosine, -sine};
    default:
      return {sine, -cosine};
  }
}

template <class T>
void Fill(int block, int largest, int count, int lanes, T* table) {
  for (int j = 0; j < count; j += lanes) {
    for (int m = 1; m <= largest; ++m) {
      for (int lane = 0; lane < lanes; ++lane) {
        const auto [cosine, sine] = CosineAndSine(m * (j + lane) % block, block);
        table[lane] = static_cast<T>(cosine);
        table[lanes + lane] = static_cast<T>(sine);
      }
      table += 2 * lanes;
    }
  }
}

}  // namespace

void FillTwiddles(int block, int largest, int count, int lanes, float* table) {
  Fill(block, largest, count, lanes, table);
}

void FillTwiddles(int block, int largest, int count, int lanes, double* table) {
  Fill(block, largest, count, lanes, table);
}

}  // namespace lx
