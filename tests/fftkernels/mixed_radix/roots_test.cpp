// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/mixed_radix/roots.h"

#include <gtest/gtest.h>

#include <cstdint>

#include "fftkernels/mixed_radix/radices.h"
#include "tests/fftkernels/mixed_radix/exact_roots.h"

namespace {

using lx_test::ExactRoot;
using lx_test::ExactRootOf;
using lx_test::IsNearest;

void ExpectNearest(std::int64_t k, std::int64_t n) {
  const lx::Root root = lx::RootOfUnity(k, n);
  const ExactRoot exact = ExactRootOf(k, n);
  ASSERT_TRUE(IsNearest(exact.cosine, root.cosine)) << k << " / " << n;
  ASSERT_TRUE(IsNearest(exact.sine, root.sine)) << k << " / " << n;
}

TEST(RootOfUnity, IsTheNearestDoubleForEveryPlaceOfSmallCircles) {
  for (std::int64_t n = 1; n <= 400; ++n) {
    for (std::int64_t k = 0; k < n; ++k) {
      ASSERT_NO_FATAL_FAILURE(ExpectNearest(k, n));
    }
  }
}

TEST(RootOfUnity, IsTheNearestDoubleForEveryPlaceOfTheLengthsInUse) {
  for (const std::int64_t n : {720, 1152, 1296, 2000, 2160, 2401, 3125, 4096, 6561, 16807, 32768}) {
    for (std::int64_t k = 0; k < n; ++k) {
      ASSERT_NO_FATAL_FAILURE(ExpectNearest(k, n));
    }
  }
}

TEST(RootOfUnity, IsTheNearestDoubleUpToTheLargestCircle) {
  constexpr std::int64_t kLargest = std::int64_t{1} << 24;
  for (const std::int64_t n : {kLargest, kLargest - 1, kLargest - 5}) {
    for (std::int64_t k = 1; k < n; k += 104729) {
      ASSERT_NO_FATAL_FAILURE(ExpectNearest(k, n));
    }
  }
}

// A fused multiply-add, or a library's sine, would break what symmetry promises.
TEST(RootOfUnity, HasTheSameNumbersWhereTheCircleIsTheSame) {
  for (const std::int64_t n : {8, 12, 56, 720, 2160}) {
    for (std::int64_t k = 0; k < n; ++k) {
      const lx::Root root = lx::RootOfUnity(k, n);
      const lx::Root opposite = lx::RootOfUnity((k + n / 2) % n, n);
      const lx::Root mirrored = lx::RootOfUnity((n - k) % n, n);
      const lx::Root quarter = lx::RootOfUnity((k + n / 4) % n, n);
      const lx::Root finer = lx::RootOfUnity(3 * k, 3 * n);
      EXPECT_EQ(root.cosine, -opposite.cosine);
      EXPECT_EQ(root.sine, -opposite.sine);
      EXPECT_EQ(root.cosine, mirrored.cosine);
      EXPECT_EQ(root.sine, -mirrored.sine);
      EXPECT_EQ(root.cosine, quarter.sine);
      EXPECT_EQ(root.cosine, finer.cosine) << k << " / " << n;
      EXPECT_EQ(root.sine, finer.sine) << k << " / " << n;
    }
  }
}

// k of each table's entries, of the whole circle.
TEST(RadixTables, HoldTheNearestDoubles) {
  EXPECT_TRUE(IsNearest(ExactRootOf(1, 3).sine, lx::kSine3));
  EXPECT_TRUE(IsNearest(ExactRootOf(1, 8).cosine, lx::kRootOfHalf));
  const auto expect = [](const auto& cosines, const auto& sines, int n, auto... k) {
    int at = 0;
    for (const int each : {k...}) {
      EXPECT_TRUE(IsNearest(ExactRootOf(each, n).cosine, cosines[at])) << each << " / " << n;
      EXPECT_TRUE(IsNearest(ExactRootOf(each, n).sine, sines[at])) << each << " / " << n;
      ++at;
    }
  };
  expect(lx::kCosines5, lx::kSines5, 5, 1, 2);
  expect(lx::kCosines7, lx::kSines7, 7, 1, 2, 3);
  expect(lx::kCosines9, lx::kSines9, 9, 1, 2, 4);
}

}  // namespace
