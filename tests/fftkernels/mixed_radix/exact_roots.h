// SPDX-License-Identifier: BSD-3-Clause
// Roots of unity in long double, by the C library, from the first eighth of the circle.
#pragma once

#include <cmath>
#include <cstdint>
#include <numbers>
#include <utility>

namespace lx_test {

struct ExactRoot {
  long double cosine;
  long double sine;
};

// exp(2 pi i k / n). Whole numbers are reduced, so that no large angle loses bits.
inline ExactRoot ExactRootOf(std::int64_t k, std::int64_t n) {
  k %= n;
  if (8 * k > 4 * n) {
    const ExactRoot mirrored = ExactRootOf(n - k, n);
    return {mirrored.cosine, -mirrored.sine};
  }
  if (8 * k > 2 * n) {
    // Half a turn less k.
    const ExactRoot mirrored = ExactRootOf(n - 2 * k, 2 * n);
    return {-mirrored.cosine, mirrored.sine};
  }
  if (8 * k > n) {
    // A quarter less k.
    const ExactRoot mirrored = ExactRootOf(n - 4 * k, 4 * n);
    return {mirrored.sine, mirrored.cosine};
  }
  const long double angle = 2.0L * std::numbers::pi_v<long double> * static_cast<long double>(k) /
                            static_cast<long double>(n);
  return {std::cos(angle), std::sin(angle)};
}

// Whether a double is the nearest to a number that is known to some bits more.
inline bool IsNearest(long double exact, double rounded) {
  const double towards = exact > rounded ? HUGE_VAL : -HUGE_VAL;
  const long double step = std::abs(static_cast<long double>(std::nextafter(rounded, towards)) -
                                    static_cast<long double>(rounded));
  return std::abs(exact - rounded) <= 0.5L * step * (1.0L + 0x1p-8L);
}

}  // namespace lx_test
