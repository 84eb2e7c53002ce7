// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/row_operations.h"

#include <gtest/gtest.h>

#include <bit>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

namespace {

using lx::RowOperations;

// Every 16-bit value in every channel, and a width that leaves a rest.
constexpr int kWidth = 65536 + 3;

constexpr lx::PlaneScale kScale{0.75, 0.5, 0.625};

struct Build {
  const char* name;
  const RowOperations* (*operations)();
};

class RowOperationBuilds : public testing::TestWithParam<Build> {
 public:
  RowOperationBuilds() : plain(lx::PlainRowOperations()), vector(GetParam().operations()) {
    if (vector == nullptr) {
      return;
    }
    std::mt19937 random(17);
    pixels.resize(kWidth * 4);
    for (int x = 0; x < kWidth; ++x) {
      pixels[x * 4] = static_cast<std::uint16_t>(x);
      for (int c = 1; c < 4; ++c) {
        pixels[x * 4 + c] = static_cast<std::uint16_t>(random());
      }
    }
    const double odd[] = {std::numeric_limits<double>::quiet_NaN(),
                          std::numeric_limits<double>::infinity(),
                          -std::numeric_limits<double>::infinity(),
                          -0.0,
                          1e300,
                          -1e300,
                          0.5};
    for (auto* plane : {&luma, &cr, &cb, &alpha}) {
      plane->resize(kWidth);
      for (double& v : *plane) {
        v = random() % 50 == 0 ? odd[random() % 7] : (random() / 4294967296.0 - 0.2) * 1.6;
      }
    }
  }

  void ExpectSameFill(RowOperations::Fill RowOperations::*fill) {
    for (const int width : {kWidth, 1, 4, 7}) {
      std::vector<double> a(static_cast<std::size_t>(width));
      std::vector<double> b(static_cast<std::size_t>(width));
      (plain.*fill)(pixels.data(), width, a.data());
      (vector->*fill)(pixels.data(), width, b.data());
      ASSERT_EQ(a, b);
    }
  }

  void ExpectSameStore(const double* alphaPlane) {
    const lx::PlaneRow planes{luma.data(), cr.data(), cb.data(), alphaPlane};
    std::vector<std::uint16_t> a = pixels;
    std::vector<std::uint16_t> b = pixels;
    plain.store(planes, kScale, kWidth, a.data());
    vector->store(planes, kScale, kWidth, b.data());
    ASSERT_EQ(a, b);
  }

  // Any not-a-number equals any other.
  static void ExpectSameBits(const std::vector<double>& a, const std::vector<double>& b) {
    ASSERT_EQ(a.size(), b.size());
    for (std::size_t i = 0; i < a.size(); ++i) {
      if (!std::isnan(a[i]) || !std::isnan(b[i])) {
        ASSERT_EQ(std::bit_cast<std::uint64_t>(a[i]), std::bit_cast<std::uint64_t>(b[i])) << i;
      }
    }
  }

  const RowOperations& plain;
  const RowOperations* vector;
  std::vector<std::uint16_t> pixels;
  std::vector<double> luma;
  std::vector<double> cr;
  std::vector<double> cb;
  std::vector<double> alpha;
};

TEST_P(RowOperationBuilds, FillTheSameBits) {
  if (vector == nullptr) {
    GTEST_SKIP() << "this processor has no " << GetParam().name;
  }
  ExpectSameFill(&RowOperations::luma);
  ExpectSameFill(&RowOperations::cr);
  ExpectSameFill(&RowOperations::cb);
  ExpectSameFill(&RowOperations::alpha);
}

TEST_P(RowOperationBuilds, StoreTheSameSamplesAlsoForWhatIsNoNumber) {
  if (vector == nullptr) {
    GTEST_SKIP() << "this processor has no " << GetParam().name;
  }
  ExpectSameStore(alpha.data());
}

TEST_P(RowOperationBuilds, LeaveTheSameAlphaAlone) {
  if (vector == nullptr) {
    GTEST_SKIP() << "this processor has no " << GetParam().name;
  }
  ExpectSameStore(nullptr);
}

TEST_P(RowOperationBuilds, MultiplyToTheSameBits) {
  if (vector == nullptr) {
    GTEST_SKIP() << "this processor has no " << GetParam().name;
  }
  std::mt19937 random(3);
  constexpr int kCount = 1025;
  std::vector<double> psf(2 * kCount);
  std::vector<double> a(2 * kCount);
  for (int i = 0; i < 2 * kCount; ++i) {
    psf[i] = random() / 4294967296.0 - 0.5;
    a[i] = (random() / 4294967296.0 - 0.5) * 1e6;
  }
  std::vector<double> b = a;
  using Complex = double[2];
  plain.multiply(reinterpret_cast<const Complex*>(psf.data()), reinterpret_cast<Complex*>(a.data()),
                 kCount);
  vector->multiply(reinterpret_cast<const Complex*>(psf.data()),
                   reinterpret_cast<Complex*>(b.data()), kCount);
  EXPECT_EQ(a, b);
}

TEST_P(RowOperationBuilds, CurveToTheSameBits) {
  if (vector == nullptr) {
    GTEST_SKIP() << "this processor has no " << GetParam().name;
  }
  std::vector<double> values = luma;
  for (int i = 0; i <= 4096; ++i) {
    values.push_back(i / 4096.0);
    values.push_back(std::exp2(-i / 4.0));
  }
  const auto width = static_cast<int>(values.size());
  for (const double g : {1.001, 2.0, 50.0, 50.0001, 120.0, 500.0}) {
    const lx::EmphasisCurve curve = lx::MakeEmphasisCurve(g);
    std::vector<double> a = values;
    std::vector<double> b = values;
    plain.applyCurve(curve, width, a.data());
    vector->applyCurve(curve, width, b.data());
    ExpectSameBits(a, b);
    plain.undoCurve(curve, values.data(), 0.75, width, a.data());
    vector->undoCurve(curve, values.data(), 0.75, width, b.data());
    ExpectSameBits(a, b);
  }
}

INSTANTIATE_TEST_SUITE_P(
    Of, RowOperationBuilds,
    testing::Values(Build{"Vector128", [] { return &lx::Vector128RowOperations(); }},
                    Build{"AVX2", lx::Avx2RowOperations}, Build{"AVX512", lx::Avx512RowOperations}),
    [](const auto& build) { return build.param.name; });

TEST(RowOperations, StoreWhatIsNoNumberAsZeroAndClampTheRest) {
  const double nan = std::numeric_limits<double>::quiet_NaN();
  const double half = 0.5;
  for (const double luma : {nan, -3.0, 7.0, 0.25}) {
    std::uint16_t pixel[4] = {1, 2, 3, 4};
    lx::PlainRowOperations().store({&luma, &half, &half, nullptr}, {1.0, 1.0, 1.0}, 1, pixel);
    const int expected = luma == 7.0 ? 65535 : luma == 0.25 ? 16384 : 0;
    EXPECT_EQ(expected, pixel[0]) << luma;
    EXPECT_EQ(4, pixel[3]);
  }
}

}  // namespace
