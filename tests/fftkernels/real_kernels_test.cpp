// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <vector>

#include "tests/fftkernels/fftw_reference.h"
#include "tests/fftkernels/kernels_by_size.h"
#include "tests/fftkernels/transform_model.h"

namespace {

using lx_test::EveryRealSize;
using lx_test::ExpectAllNear;
using lx_test::Kind;
using lx_test::LargestErrorOf;
using lx_test::Number;
using lx_test::RealKernels;
using lx_test::Roots;
using lx_test::SampleAt;
using lx_test::UniformValues;
using lx_test::WholeValues;

using Floats = std::vector<float>;

constexpr float kUnit = std::numeric_limits<float>::epsilon();

std::size_t Count(const RealKernels& kernels) { return static_cast<std::size_t>(kernels.n); }

std::vector<std::uint32_t> PairOrder(const RealKernels& kernels) {
  return lx_test::PairOrder(static_cast<std::uint32_t>(kernels.n));
}

RealKernels OfSize(int n) {
  for (const RealKernels& kernels : EveryRealSize()) {
    if (kernels.n == n) {
      return kernels;
    }
  }
  return {};
}

Floats Forward(const RealKernels& kernels, Floats data) {
  kernels.forward(data.data());
  return data;
}

// The array whose sequence is cos(2 pi k f / n + turn).
Floats Cosine(std::size_t n, std::size_t f, long double turn) {
  Floats array(n);
  for (std::size_t i = 0; i < n; ++i) {
    const Number root = Roots(n)[SampleAt(i, n) * f % n];
    array[i] = static_cast<float>(root.real() * std::cos(turn) - root.imag() * std::sin(turn));
  }
  return array;
}

std::vector<Number> Sequence(const Floats& array) {
  std::vector<Number> sequence(array.size());
  for (std::size_t i = 0; i < array.size(); ++i) {
    sequence[SampleAt(i, array.size())] = array[i];
  }
  return sequence;
}

TEST(RealKernel, ForwardIsThePlainSumOfItsSequence) {
  for (const RealKernels& kernels : EveryRealSize()) {
    lx_test::ExpectPlainSum(Kind::kForwardReal, kernels.n, kernels.forward);
  }
}

TEST(RealKernel, InverseIsThePlainSumInTheOrderOfTheInput) {
  for (const RealKernels& kernels : EveryRealSize()) {
    lx_test::ExpectPlainSum(Kind::kInverseReal, kernels.n, kernels.inverse);
  }
}

TEST(RealKernel, ForwardErrsOnAverageLittleMoreThanFftw) {
  for (const RealKernels& kernels : EveryRealSize()) {
    lx_test::ExpectMeanErrorNearFftw(Kind::kForwardReal, kernels.n, kernels.forward);
  }
}

TEST(RealKernel, InverseErrsOnAverageLittleMoreThanFftw) {
  for (const RealKernels& kernels : EveryRealSize()) {
    lx_test::ExpectMeanErrorNearFftw(Kind::kInverseReal, kernels.n, kernels.inverse);
  }
}

TEST(RealKernel, SizeTwoIsSumAndDifferenceBothWays) {
  EXPECT_EQ(Forward(OfSize(2), {3, 50}), (Floats{53, -47}));

  Floats data = {3, 50};
  OfSize(2).inverse(data.data());
  EXPECT_EQ(data, (Floats{53, -47}));
}

TEST(RealKernel, ForwardOfFourByHand) {
  // Each sum and difference is of other digits: 1 + 20 + 300 + 4000 and so on.
  EXPECT_EQ(Forward(OfSize(4), {1, 20, 300, 4000}),
            (Floats{1 + 20 + 300 + 4000, 1 + 20 - 300 - 4000, 1 - 20, 300 - 4000}));
}

TEST(RealKernel, InverseOfFourByHand) {
  Floats data = {1, 20, 300, 4000};

  OfSize(4).inverse(data.data());

  EXPECT_EQ(data, (Floats{1 + 20 + 300, 1 + 20 - 300, 1 - 20 + 4000, 1 - 20 - 4000}));
}

TEST(RealKernel, ScaleOfFourHalvesTheFirstTwoOnceMore) {
  Floats data = {1, 1, 1, 1};

  OfSize(4).scale(data.data());

  EXPECT_EQ(data, (Floats{0.25F, 0.25F, 0.5F, 0.5F}));
}

TEST(RealKernel, ImpulseAtTheStartGivesExactOnes) {
  for (const RealKernels& kernels : EveryRealSize()) {
    Floats data(Count(kernels), 0);
    data[0] = 1;

    kernels.forward(data.data());

    for (std::size_t i = 0; i < data.size(); ++i) {
      ASSERT_EQ(data[i], i < 2 || i % 2 == 0 ? 1 : 0) << "size " << kernels.n << ", element " << i;
    }
  }
}

// It is sample n/2, not sample 1: odd frequencies turn by half, even ones come round.
TEST(RealKernel, ImpulseAtPositionOneIsTheMiddleSample) {
  for (const RealKernels& kernels : EveryRealSize()) {
    if (kernels.n < 4) {
      continue;  // there the middle is the odd frequency itself
    }
    const std::vector<std::uint32_t> order = PairOrder(kernels);
    Floats data(Count(kernels), 0);
    data[1] = 1;

    kernels.forward(data.data());

    EXPECT_NEAR(data[0], 1, kUnit) << "size " << kernels.n;
    EXPECT_NEAR(data[1], 1, kUnit) << "size " << kernels.n;
    for (std::size_t pair = 1; pair < order.size(); ++pair) {
      ASSERT_NEAR(data[2 * pair], order[pair] % 2 == 0 ? 1 : -1, 8 * kUnit)
          << "size " << kernels.n << ", pair " << pair;
      ASSERT_NEAR(data[2 * pair + 1], 0, 8 * kUnit) << "size " << kernels.n << ", pair " << pair;
    }
  }
}

// The order by hand: one cosine after another, seen where it comes out.
TEST(RealKernel, PairsOfEightHoldFrequencies2And1And5) {
  const std::size_t expected[] = {2, 1, 5};
  for (std::size_t pair = 1; pair < 4; ++pair) {
    const Floats spectrum = Forward(OfSize(8), Cosine(8, expected[pair - 1], 0));

    EXPECT_NEAR(spectrum[2 * pair], 4, 4 * kUnit) << "frequency " << expected[pair - 1];
  }
}

TEST(RealKernel, PairsOfSixteenHoldFrequencies4And2And10And1And9And5And13) {
  const std::size_t expected[] = {4, 2, 10, 1, 9, 5, 13};
  for (std::size_t pair = 1; pair < 8; ++pair) {
    const Floats spectrum = Forward(OfSize(16), Cosine(16, expected[pair - 1], 0));

    EXPECT_NEAR(spectrum[2 * pair], 8, 8 * kUnit) << "frequency " << expected[pair - 1];
  }
}

// A cosine that runs ahead by a: with the positive sign in the exponent, frequency f of it is
// n/2 exp(-i a), and n - f the conjugate.
TEST(RealKernel, SingleFrequencyLandsInItsPairAlone) {
  constexpr long double kTurn = 0.5;
  for (const RealKernels& kernels : EveryRealSize()) {
    const std::size_t n = Count(kernels);
    const std::vector<std::uint32_t> order = PairOrder(kernels);
    for (std::size_t pair = 1; pair < order.size(); pair += 1 + order.size() / 16) {
      SCOPED_TRACE(testing::Message() << "frequency " << order[pair]);

      const Floats spectrum = Forward(kernels, Cosine(n, order[pair], kTurn));

      std::vector<long double> expected(n, 0);
      expected[2 * pair] = std::cos(kTurn) * static_cast<long double>(n) / 2;
      expected[2 * pair + 1] = -std::sin(kTurn) * static_cast<long double>(n) / 2;
      ExpectAllNear(expected, spectrum, kUnit * static_cast<long double>(n) / 2);
    }
  }
}

TEST(RealKernel, ForwardScaleAndInverseReturnEachValueToItsPosition) {
  for (const RealKernels& kernels : EveryRealSize()) {
    const Floats input = UniformValues<float>(Count(kernels), 1);
    Floats data = input;

    kernels.forward(data.data());
    kernels.scale(data.data());
    kernels.inverse(data.data());

    ExpectAllNear(input, data, 8 * kUnit);
  }
}

TEST(RealKernel, ForwardOfAWeightedSumIsTheWeightedSumOfForwards) {
  for (const RealKernels& kernels : EveryRealSize()) {
    const Floats a = UniformValues<float>(Count(kernels), 2);
    const Floats b = UniformValues<float>(Count(kernels), 3);
    Floats mixed(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
      mixed[i] = a[i] / 2 - b[i] / 4;
    }

    const Floats got = Forward(kernels, mixed);

    const Floats forwardA = Forward(kernels, a);
    const Floats forwardB = Forward(kernels, b);
    std::vector<long double> expected(a.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
      expected[i] = forwardA[i] / 2.0L - forwardB[i] / 4.0L;
    }
    ExpectAllNear(expected, got, 2 * LargestErrorOf(kernels.n, forwardA));
  }
}

TEST(RealKernel, ShiftOfTheSequenceTurnsEachPairByItsTwiddle) {
  for (const RealKernels& kernels : EveryRealSize()) {
    const std::size_t n = Count(kernels);
    const std::vector<std::uint32_t> order = PairOrder(kernels);
    const Floats input = UniformValues<float>(n, 4);
    const std::vector<Number> sequence = Sequence(input);
    Floats shifted(n);
    for (std::size_t i = 0; i < n; ++i) {
      shifted[i] = static_cast<float>(sequence[(SampleAt(i, n) + 1) % n].real());
    }

    const Floats got = Forward(kernels, shifted);

    const Floats forward = Forward(kernels, input);
    std::vector<long double> expected = {forward[0], -forward[1]};
    for (std::size_t pair = 1; pair < order.size(); ++pair) {
      const Number turned = lx_test::Times(Number(forward[2 * pair], forward[2 * pair + 1]),
                                           std::conj(Roots(n)[order[pair]]));
      expected.push_back(turned.real());
      expected.push_back(turned.imag());
    }
    ExpectAllNear(expected, got, 2 * LargestErrorOf(kernels.n, forward));
  }
}

TEST(RealKernel, ProductOfSpectraIsCyclicConvolutionOfTheSequences) {
  for (const RealKernels& kernels : EveryRealSize()) {
    const std::size_t n = Count(kernels);
    const Floats inputA = UniformValues<float>(n, 5);
    const Floats inputB = UniformValues<float>(n, 6);
    Floats data = Forward(kernels, inputA);
    const Floats spectrumB = Forward(kernels, inputB);

    kernels.multiply(data.data(), spectrumB.data());
    kernels.scale(data.data());
    kernels.inverse(data.data());

    const std::vector<Number> a = Sequence(inputA);
    const std::vector<Number> b = Sequence(inputB);
    lx_test::TransformCase<float> wanted;
    for (const std::size_t i : lx_test::PlacesToSum(n)) {
      wanted.expected.push_back({i, lx_test::ConvolvedAt(a, b, SampleAt(i, n)).real()});
    }
    lx_test::ExpectMatches(wanted, data.data(), kernels.n, 3);
  }
}

TEST(RealKernel, ScaleDividesTheFirstTwoByTheSizeAndTheRestByHalfOfIt) {
  for (const RealKernels& kernels : EveryRealSize()) {
    const Floats input = UniformValues<float>(Count(kernels), 7);
    Floats data = input;

    kernels.scale(data.data());

    const int power = std::ilogb(kernels.n);
    for (std::size_t i = 0; i < data.size(); ++i) {
      ASSERT_EQ(data[i], std::ldexp(input[i], i < 2 ? -power : 1 - power))
          << "size " << kernels.n << ", element " << i;
    }
  }
}

TEST(RealKernel, MulTakesTheFirstTwoAsRealNumbersAndPairsAsComplexOnes) {
  for (const RealKernels& kernels : EveryRealSize()) {
    const Floats a = WholeValues<float>(Count(kernels), 8);
    const Floats b = WholeValues<float>(Count(kernels), 9);
    Floats data = a;

    kernels.multiply(data.data(), b.data());

    EXPECT_EQ(data[0], a[0] * b[0]) << "size " << kernels.n;
    EXPECT_EQ(data[1], a[1] * b[1]) << "size " << kernels.n;
    for (std::size_t i = 2; i < data.size(); i += 2) {
      ASSERT_EQ(data[i], a[i] * b[i] - a[i + 1] * b[i + 1])
          << "size " << kernels.n << ", element " << i;
      ASSERT_EQ(data[i + 1], a[i] * b[i + 1] + a[i + 1] * b[i])
          << "size " << kernels.n << ", element " << i + 1;
    }
  }
}

TEST(RealKernel, MulLeavesTheSecondArray) {
  for (const RealKernels& kernels : EveryRealSize()) {
    Floats a = UniformValues<float>(Count(kernels), 10);
    const Floats before = UniformValues<float>(Count(kernels), 11);
    Floats b = before;

    kernels.multiply(a.data(), b.data());

    EXPECT_TRUE(b == before) << "size " << kernels.n;
  }
}

TEST(RealKernel, MulOfAnArrayByItselfSquaresIt) {
  for (const RealKernels& kernels : EveryRealSize()) {
    const Floats input = WholeValues<float>(Count(kernels), 12);
    Floats data = input;

    kernels.multiply(data.data(), data.data());

    EXPECT_EQ(data[0], input[0] * input[0]) << "size " << kernels.n;
    EXPECT_EQ(data[1], input[1] * input[1]) << "size " << kernels.n;
    for (std::size_t i = 2; i < data.size(); i += 2) {
      ASSERT_EQ(data[i], input[i] * input[i] - input[i + 1] * input[i + 1])
          << "size " << kernels.n << ", element " << i;
      ASSERT_EQ(data[i + 1], 2 * input[i] * input[i + 1])
          << "size " << kernels.n << ", element " << i + 1;
    }
  }
}

}  // namespace
