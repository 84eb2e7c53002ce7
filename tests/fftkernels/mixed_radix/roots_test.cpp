// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/mixed_radix/roots.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>
#include <random>

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

// By another library's numbers of 113 bits: C libraries' own are not all right about them.
TEST(RootOfAngle, IsTheNearestDoubleOfAnyAngle) {
  struct Known {
    double radians;
    double cosine;
    double sine;
  };
  constexpr Known kKnown[] = {
      {1, 0.54030230586813977, 0.8414709848078965},
      {-2, -0.41614683654714241, -0.90929742682568171},
      {3, -0.98999249660044542, 0.14112000805986721},
      {6.2831854820251456, 0.99999999999998468, 1.7484555911927041e-07},
      {0.12566371262073517, 0.99211470050267647, 0.12533323999037346},
      {22, -0.99996082639463713, -0.0088513092904038762},
      {355, -0.99999999954565899, -3.0144353359488451e-05},
      {-9424.7779607693792, 1, 5.0950258689622599e-13},
      {100000, -0.99936080743821243, 0.035748797972016508},
      {999999.5, 0.65428150865035095, -0.75625108756167803},
  };
  for (const Known& known : kKnown) {
    EXPECT_EQ(known.cosine, lx::RootOfAngle(known.radians).cosine) << known.radians;
    EXPECT_EQ(known.sine, lx::RootOfAngle(known.radians).sine) << known.radians;
  }
  // Half a turn and a quarter, as far as a double goes.
  EXPECT_NEAR(1.2246467991473532e-16, lx::RootOfAngle(3.1415926535897931).sine, 1e-29);
  EXPECT_NEAR(6.123233995736766e-17, lx::RootOfAngle(-1.5707963267948966).cosine, 1e-29);
}

TEST(RootOfAngle, IsTheNearestDoubleOfSmallAngles) {
  std::mt19937 random(8);
  for (int i = 0; i < 100000; ++i) {
    const double radians = (random() / 4294967296.0 - 0.5) * 1.5707;
    const lx::Root root = lx::RootOfAngle(radians);
    ASSERT_TRUE(IsNearest(std::cos(static_cast<long double>(radians)), root.cosine)) << radians;
    ASSERT_TRUE(IsNearest(std::sin(static_cast<long double>(radians)), root.sine)) << radians;
  }
}

TEST(RootOfAngle, LeavesToTheSystemWhatNoApertureHas) {
  // The compiler knows cosines of its own.
  const volatile double far = 2e6;
  EXPECT_EQ(std::cos(far), lx::RootOfAngle(far).cosine);
  EXPECT_TRUE(std::isnan(lx::RootOfAngle(std::numeric_limits<double>::infinity()).sine));
  EXPECT_TRUE(std::isnan(lx::RootOfAngle(std::numeric_limits<double>::quiet_NaN()).cosine));
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
