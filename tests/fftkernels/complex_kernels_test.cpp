// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <string>
#include <type_traits>
#include <vector>

#include "tests/fftkernels/fftw_reference.h"
#include "tests/fftkernels/kernels_by_size.h"
#include "tests/fftkernels/transform_model.h"

namespace {

using lx_test::ComplexKernels;
using lx_test::ComplexNumbers;
using lx_test::Elements;
using lx_test::EveryComplexSize;
using lx_test::ExpectAllNear;
using lx_test::FrequencyOrder;
using lx_test::Kind;
using lx_test::LargestErrorOf;
using lx_test::Number;
using lx_test::Roots;
using lx_test::Times;
using lx_test::UniformValues;
using lx_test::WholeValues;

template <class T>
class ComplexKernel : public testing::Test {};

struct WidthNames {
  template <class T>
  static std::string GetName(int /*index*/) {
    return std::is_same_v<T, float> ? "F32" : "F64";
  }
};

using Widths = testing::Types<float, double>;
TYPED_TEST_SUITE(ComplexKernel, Widths, WidthNames);

// Places to put one impulse or one frequency of n at: all of a small size, else the ends of the
// blocks and some between.
std::vector<std::size_t> SinglePlaces(std::size_t n) {
  std::vector<std::size_t> places;
  if (n <= 32) {
    for (std::size_t p = 0; p < n; ++p) {
      places.push_back(p);
    }
    return places;
  }
  places = {0, 1, n / 4 - 1, n / 4, n / 2, n / 2 + 1, n * 3 / 4, n - 1};
  std::mt19937_64 random(n);
  for (int i = 0; i < 4; ++i) {
    places.push_back(random() % n);
  }
  return places;
}

template <class T>
std::vector<T> Forward(const ComplexKernels<T>& kernels, std::vector<T> data) {
  kernels.forward(data.data());
  return data;
}

// x[j] exp(2 pi i j f / n), each rounded to the width.
template <class T>
std::vector<T> Wave(std::size_t n, std::size_t f) {
  std::vector<T> wave;
  for (std::size_t j = 0; j < n; ++j) {
    const Number& root = Roots(n)[j * f % n];
    wave.push_back(static_cast<T>(root.real()));
    wave.push_back(static_cast<T>(root.imag()));
  }
  return wave;
}

TYPED_TEST(ComplexKernel, ForwardIsThePlainSumInTableOrder) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    lx_test::ExpectPlainSum(Kind::kForwardComplex, kernels.n, kernels.forward);
  }
}

TYPED_TEST(ComplexKernel, InverseIsThePlainSumInNaturalOrder) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    lx_test::ExpectPlainSum(Kind::kInverseComplex, kernels.n, kernels.inverse);
  }
}

TYPED_TEST(ComplexKernel, ForwardErrsOnAverageLittleMoreThanFftw) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    lx_test::ExpectMeanErrorNearFftw(Kind::kForwardComplex, kernels.n, kernels.forward);
  }
}

TYPED_TEST(ComplexKernel, InverseErrsOnAverageLittleMoreThanFftw) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    lx_test::ExpectMeanErrorNearFftw(Kind::kInverseComplex, kernels.n, kernels.inverse);
  }
}

TYPED_TEST(ComplexKernel, SizeTwoIsSumAndDifferenceBothWays) {
  const std::vector<TypeParam> input = {1, 20, 300, 4000};
  const std::vector<TypeParam> expected = {301, 4020, -299, -3980};
  const ComplexKernels<TypeParam> kernels = EveryComplexSize<TypeParam>()[0];
  std::vector<TypeParam> forward = input;
  std::vector<TypeParam> inverse = input;

  kernels.forward(forward.data());
  kernels.inverse(inverse.data());

  EXPECT_EQ(forward, expected);
  EXPECT_EQ(inverse, expected);
}

// 1 i^(j f) for j = 1, with f 0, 2, 1, 3.
TYPED_TEST(ComplexKernel, ForwardHasThePositiveSignInTheExponent) {
  std::vector<TypeParam> data = {0, 0, 1, 0, 0, 0, 0, 0};

  EveryComplexSize<TypeParam>()[1].forward(data.data());

  EXPECT_EQ(data, (std::vector<TypeParam>{1, 0, -1, 0, 0, 1, 0, -1}));
}

// Place 2 holds frequency 1, which goes backwards through 1, -i, -1, i.
TYPED_TEST(ComplexKernel, InverseHasTheNegativeSignInTheExponent) {
  std::vector<TypeParam> data = {0, 0, 0, 0, 1, 0, 0, 0};

  EveryComplexSize<TypeParam>()[1].inverse(data.data());

  EXPECT_EQ(data, (std::vector<TypeParam>{1, 0, 0, -1, -1, 0, 0, 1}));
}

TYPED_TEST(ComplexKernel, ImpulseAtTheStartGivesExactOnes) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    std::vector<TypeParam> data(2 * static_cast<std::size_t>(kernels.n), 0);
    data[0] = 1;

    kernels.forward(data.data());

    for (std::size_t i = 0; i < data.size(); ++i) {
      ASSERT_EQ(data[i], i % 2 == 0 ? 1 : 0) << "size " << kernels.n << ", element " << i;
    }
  }
}

TYPED_TEST(ComplexKernel, ImpulseElsewhereGivesTheRootsInTableOrder) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const auto n = static_cast<std::size_t>(kernels.n);
    const std::vector<std::uint32_t> order = FrequencyOrder(static_cast<std::uint32_t>(n));
    for (const std::size_t j : SinglePlaces(n)) {
      SCOPED_TRACE(testing::Message() << "impulse at " << j);
      std::vector<TypeParam> data(2 * n, 0);
      data[2 * j] = 1;

      kernels.forward(data.data());

      std::vector<Number> expected;
      for (const std::uint32_t f : order) {
        expected.push_back(Roots(n)[j * f % n]);
      }
      // It meets one factor in each of at most thirteen passes.
      ExpectAllNear(Elements(expected), data, 8 * std::numeric_limits<TypeParam>::epsilon());
    }
  }
}

TYPED_TEST(ComplexKernel, SingleFrequencyLandsAtItsPlaceInTheTable) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const auto n = static_cast<std::size_t>(kernels.n);
    const std::vector<std::uint32_t> order = FrequencyOrder(static_cast<std::uint32_t>(n));
    for (const std::size_t f : SinglePlaces(n)) {
      SCOPED_TRACE(testing::Message() << "frequency " << f);
      std::vector<TypeParam> data = Wave<TypeParam>(n, n - f);

      kernels.forward(data.data());

      std::vector<Number> expected(n);
      expected[static_cast<std::size_t>(std::find(order.begin(), order.end(), f) - order.begin())] =
          static_cast<long double>(n);
      // A unit of n, which is what the one frequency adds up to.
      ExpectAllNear(Elements(expected), data,
                    std::numeric_limits<TypeParam>::epsilon() * static_cast<long double>(n));
    }
  }
}

TYPED_TEST(ComplexKernel, InverseOfForwardIsTheDataTimesTheSize) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const auto n = static_cast<std::size_t>(kernels.n);
    const std::vector<TypeParam> input = UniformValues<TypeParam>(2 * n, 1);
    std::vector<TypeParam> data = input;

    kernels.forward(data.data());
    kernels.inverse(data.data());

    std::vector<long double> expected;
    for (const TypeParam v : input) {
      expected.push_back(static_cast<long double>(v) * static_cast<long double>(n));
    }
    ExpectAllNear(expected, data,
                  8 * std::numeric_limits<TypeParam>::epsilon() * static_cast<long double>(n));
  }
}

TYPED_TEST(ComplexKernel, ForwardScaleAndInverseGiveTheData) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const std::vector<TypeParam> input =
        UniformValues<TypeParam>(2 * static_cast<std::size_t>(kernels.n), 2);
    std::vector<TypeParam> data = input;

    kernels.forward(data.data());
    kernels.scale(data.data());
    kernels.inverse(data.data());

    ExpectAllNear(input, data, 8 * std::numeric_limits<TypeParam>::epsilon());
  }
}

TYPED_TEST(ComplexKernel, ForwardOfAWeightedSumIsTheWeightedSumOfForwards) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const std::size_t count = 2 * static_cast<std::size_t>(kernels.n);
    const std::vector<TypeParam> a = UniformValues<TypeParam>(count, 3);
    const std::vector<TypeParam> b = UniformValues<TypeParam>(count, 4);
    std::vector<TypeParam> mixed(count);
    for (std::size_t i = 0; i < count; ++i) {
      mixed[i] = a[i] / 2 - b[i] / 4;
    }

    const std::vector<TypeParam> got = Forward(kernels, mixed);

    const std::vector<TypeParam> forwardA = Forward(kernels, a);
    const std::vector<TypeParam> forwardB = Forward(kernels, b);
    std::vector<long double> expected(count);
    for (std::size_t i = 0; i < count; ++i) {
      expected[i] = forwardA[i] / 2.0L - forwardB[i] / 4.0L;
    }
    ExpectAllNear(expected, got, 2 * LargestErrorOf(kernels.n, forwardA));
  }
}

TYPED_TEST(ComplexKernel, ShiftTurnsEachFrequencyByItsTwiddle) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const auto n = static_cast<std::size_t>(kernels.n);
    const std::vector<std::uint32_t> order = FrequencyOrder(static_cast<std::uint32_t>(n));
    const std::vector<TypeParam> input = UniformValues<TypeParam>(2 * n, 5);
    const std::vector<TypeParam> forward = Forward(kernels, input);
    for (const std::size_t shift : {std::size_t{1}, n / 2, 5 * n / 8 + 1}) {
      SCOPED_TRACE(testing::Message() << "shifted by " << shift);
      std::vector<TypeParam> data = input;
      std::rotate(data.begin(), data.begin() + static_cast<std::ptrdiff_t>(2 * (shift % n)),
                  data.end());

      kernels.forward(data.data());

      std::vector<Number> expected = ComplexNumbers(forward);
      for (std::size_t p = 0; p < n; ++p) {
        expected[p] = Times(expected[p], std::conj(Roots(n)[shift * order[p] % n]));
      }
      ExpectAllNear(Elements(expected), data, 2 * LargestErrorOf(kernels.n, forward));
    }
  }
}

TYPED_TEST(ComplexKernel, ProductOfSpectraIsCyclicConvolution) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const auto n = static_cast<std::size_t>(kernels.n);
    const std::vector<TypeParam> inputA = UniformValues<TypeParam>(2 * n, 6);
    const std::vector<TypeParam> inputB = UniformValues<TypeParam>(2 * n, 7);
    std::vector<TypeParam> data = Forward(kernels, inputA);
    const std::vector<TypeParam> spectrumB = Forward(kernels, inputB);

    kernels.multiply(data.data(), spectrumB.data());
    kernels.scale(data.data());
    kernels.inverse(data.data());

    const std::vector<Number> a = ComplexNumbers(inputA);
    const std::vector<Number> b = ComplexNumbers(inputB);
    lx_test::TransformCase<TypeParam> wanted;
    for (const std::size_t j : lx_test::PlacesToSum(n)) {
      const Number sum = lx_test::ConvolvedAt(a, b, j);
      wanted.expected.push_back({2 * j, sum.real()});
      wanted.expected.push_back({2 * j + 1, sum.imag()});
    }
    lx_test::ExpectMatches(wanted, data.data(), kernels.n, 3);
  }
}

TYPED_TEST(ComplexKernel, ScaleDividesByTheSizeExactly) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const std::vector<TypeParam> input =
        UniformValues<TypeParam>(2 * static_cast<std::size_t>(kernels.n), 8);
    std::vector<TypeParam> data = input;

    kernels.scale(data.data());

    for (std::size_t i = 0; i < data.size(); ++i) {
      ASSERT_EQ(data[i], std::ldexp(input[i], -std::ilogb(kernels.n)))
          << "size " << kernels.n << ", element " << i;
    }
  }
}

TYPED_TEST(ComplexKernel, MulIsTheComplexProductOfEachPlace) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const auto n = static_cast<std::size_t>(kernels.n);
    const std::vector<TypeParam> a = WholeValues<TypeParam>(2 * n, 9);
    const std::vector<TypeParam> b = WholeValues<TypeParam>(2 * n, 10);
    std::vector<TypeParam> data = a;

    kernels.multiply(data.data(), b.data());

    for (std::size_t i = 0; i < 2 * n; i += 2) {
      ASSERT_EQ(data[i], a[i] * b[i] - a[i + 1] * b[i + 1])
          << "size " << kernels.n << ", element " << i;
      ASSERT_EQ(data[i + 1], a[i] * b[i + 1] + a[i + 1] * b[i])
          << "size " << kernels.n << ", element " << i + 1;
    }
  }
}

TYPED_TEST(ComplexKernel, MulErrsByAUnitOfItsTerms) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const auto n = static_cast<std::size_t>(kernels.n);
    const std::vector<TypeParam> inputA = UniformValues<TypeParam>(2 * n, 11);
    const std::vector<TypeParam> inputB = UniformValues<TypeParam>(2 * n, 12);
    std::vector<TypeParam> data = inputA;

    kernels.multiply(data.data(), inputB.data());

    const std::vector<Number> a = ComplexNumbers(inputA);
    const std::vector<Number> b = ComplexNumbers(inputB);
    std::vector<Number> expected(n);
    for (std::size_t p = 0; p < n; ++p) {
      expected[p] = Times(a[p], b[p]);
    }
    // Two terms of at most 1, and the half unit of either and of their sum.
    ExpectAllNear(Elements(expected), data, 2 * std::numeric_limits<TypeParam>::epsilon());
  }
}

TYPED_TEST(ComplexKernel, MulLeavesTheSecondArray) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const std::size_t count = 2 * static_cast<std::size_t>(kernels.n);
    std::vector<TypeParam> a = UniformValues<TypeParam>(count, 13);
    const std::vector<TypeParam> before = UniformValues<TypeParam>(count, 14);
    std::vector<TypeParam> b = before;

    kernels.multiply(a.data(), b.data());

    EXPECT_TRUE(b == before) << "size " << kernels.n;
  }
}

TYPED_TEST(ComplexKernel, MulOfAnArrayByItselfSquaresIt) {
  for (const auto& kernels : EveryComplexSize<TypeParam>()) {
    const std::vector<TypeParam> input =
        WholeValues<TypeParam>(2 * static_cast<std::size_t>(kernels.n), 15);
    std::vector<TypeParam> data = input;

    kernels.multiply(data.data(), data.data());

    for (std::size_t i = 0; i < data.size(); i += 2) {
      ASSERT_EQ(data[i], input[i] * input[i] - input[i + 1] * input[i + 1])
          << "size " << kernels.n << ", element " << i;
      ASSERT_EQ(data[i + 1], 2 * input[i] * input[i + 1])
          << "size " << kernels.n << ", element " << i + 1;
    }
  }
}

}  // namespace
