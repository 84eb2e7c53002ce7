// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/distance.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <random>

namespace {

using lx::DistanceOf;

// With the digits of a long double, of which no system has fewer than a double's.
long double Model(double x, double y) {
  return std::sqrt(static_cast<long double>(x) * x + static_cast<long double>(y) * y);
}

// Pointers and centres of pictures of up to 16,384 pixels, as handles have them.
TEST(Distance, IsWithinTwoStepsOfTheTrueOneAndTheSameFloat) {
  std::mt19937_64 random(5);
  std::uniform_real_distribution<float> pixel(-16384.0F, 16384.0F);
  std::uniform_real_distribution<float> unit(-1.0F, 2.0F);
  for (int i = 0; i < 1'000'000; ++i) {
    const double width = 1.0 + static_cast<double>(random() % 16384);
    const double x = static_cast<double>(pixel(random)) - width * static_cast<double>(unit(random));
    const double y = static_cast<double>(pixel(random)) - width * static_cast<double>(unit(random));
    const double got = DistanceOf(x, y);

    const double step = std::nextafter(got, std::numeric_limits<double>::infinity()) - got;
    ASSERT_LT(std::abs(Model(x, y) - got), 2 * step) << x << " " << y;
    const auto expected = static_cast<float>(static_cast<double>(Model(x, y)) * 2.0 / width);
    ASSERT_EQ(expected, static_cast<float>(got * 2.0 / width)) << x << " " << y << " " << width;
  }
}

// m^2 - n^2 and 2 m n are two sides of a right-angled triangle whose third is m^2 + n^2.
TEST(Distance, IsExactWhereItIsAWholeNumber) {
  for (int m = 1; m < 400; ++m) {
    for (int n = 0; n < m; ++n) {
      ASSERT_EQ(m * m + n * n, DistanceOf(m * m - n * n, -2.0 * m * n)) << m << " " << n;
    }
  }
  EXPECT_EQ(0.1, DistanceOf(0.0, -0.1));
}

TEST(Distance, IsInfiniteWhereAnythingIs) {
  constexpr double kInfinite = std::numeric_limits<double>::infinity();
  constexpr double kNone = std::numeric_limits<double>::quiet_NaN();
  EXPECT_EQ(kInfinite, DistanceOf(-kInfinite, 0.0));
  EXPECT_EQ(kInfinite, DistanceOf(kNone, kInfinite));
  EXPECT_TRUE(std::isnan(DistanceOf(kNone, 1.0)));
}

}  // namespace
