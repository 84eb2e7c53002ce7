// SPDX-License-Identifier: BSD-3-Clause
// Every small transform against the definition, on plain numbers and on vectors.
#include "fftkernels/mixed_radix/radices.h"

#include <gtest/gtest.h>

#include <cmath>
#include <random>
#include <utility>

#include "tests/fftkernels/mixed_radix/exact_roots.h"

namespace {

using Lanes = double __attribute__((vector_size(4 * sizeof(double))));

template <int n>
struct Line {
  double re[n];
  double im[n];
};

template <int n>
Line<n> Noise(unsigned seed) {
  std::mt19937 random(seed);
  Line<n> line;
  for (int j = 0; j < n; ++j) {
    line.re[j] = random() / 2147483648.0 - 1.0;
    line.im[j] = random() / 2147483648.0 - 1.0;
  }
  return line;
}

template <class Size>
class Radices : public testing::Test {};

using Sizes = testing::Types<std::integral_constant<int, 1>, std::integral_constant<int, 2>,
                             std::integral_constant<int, 3>, std::integral_constant<int, 4>,
                             std::integral_constant<int, 5>, std::integral_constant<int, 6>,
                             std::integral_constant<int, 7>, std::integral_constant<int, 8>,
                             std::integral_constant<int, 9>, std::integral_constant<int, 10>>;
TYPED_TEST_SUITE(Radices, Sizes);

TYPED_TEST(Radices, TransformAsTheDefinitionSays) {
  constexpr int kSize = TypeParam::value;
  for (unsigned seed = 1; seed <= 200; ++seed) {
    const Line<kSize> line = Noise<kSize>(seed);
    Line<kSize> got = line;

    lx::TransformRadix<kSize>(got.re, got.im);

    for (int k = 0; k < kSize; ++k) {
      long double re = 0.0L;
      long double im = 0.0L;
      for (int j = 0; j < kSize; ++j) {
        const lx_test::ExactRoot root = lx_test::ExactRootOf(j * k, kSize);
        re += line.re[j] * root.cosine + line.im[j] * root.sine;
        im += line.im[j] * root.cosine - line.re[j] * root.sine;
      }
      // Some roundings of a sum of numbers up to 1.
      const double bound = kSize * 4e-16;
      ASSERT_NEAR(static_cast<double>(re), got.re[k], bound) << "seed " << seed << ", " << k;
      ASSERT_NEAR(static_cast<double>(im), got.im[k], bound) << "seed " << seed << ", " << k;
    }
  }
}

TYPED_TEST(Radices, GoBackWithPartsExchanged) {
  constexpr int kSize = TypeParam::value;
  const Line<kSize> line = Noise<kSize>(7);
  Line<kSize> got = line;

  lx::TransformRadix<kSize>(got.re, got.im);
  lx::TransformRadix<kSize>(got.im, got.re);

  for (int j = 0; j < kSize; ++j) {
    EXPECT_NEAR(kSize * line.re[j], got.re[j], kSize * 1e-15);
    EXPECT_NEAR(kSize * line.im[j], got.im[j], kSize * 1e-15);
  }
}

TYPED_TEST(Radices, GiveTheSameBitsInEveryLaneOfAVector) {
  constexpr int kSize = TypeParam::value;
  Lanes re[kSize];
  Lanes im[kSize];
  Line<kSize> plain[4];
  for (unsigned lane = 0; lane < 4; ++lane) {
    plain[lane] = Noise<kSize>(100 + lane);
    for (int j = 0; j < kSize; ++j) {
      re[j][lane] = plain[lane].re[j];
      im[j][lane] = plain[lane].im[j];
    }
    lx::TransformRadix<kSize>(plain[lane].re, plain[lane].im);
  }

  lx::TransformRadix<kSize>(re, im);

  for (unsigned lane = 0; lane < 4; ++lane) {
    for (int j = 0; j < kSize; ++j) {
      EXPECT_EQ(plain[lane].re[j], re[j][lane]) << lane << ", " << j;
      EXPECT_EQ(plain[lane].im[j], im[j][lane]) << lane << ", " << j;
    }
  }
}

}  // namespace
