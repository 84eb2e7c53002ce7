// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/convert.h"

#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

namespace {

constexpr double kNan = std::numeric_limits<double>::quiet_NaN();
constexpr double kInf = std::numeric_limits<double>::infinity();

TEST(TruncateToInt32, TruncatesTowardZero) {
  EXPECT_EQ(5, lx::TruncateToInt32(5.9));
  EXPECT_EQ(0, lx::TruncateToInt32(-0.5));
  EXPECT_EQ(-5, lx::TruncateToInt32(-5.9));
}

TEST(TruncateToInt32, KeepsBothEndsOfTheRange) {
  EXPECT_EQ(INT32_MAX, lx::TruncateToInt32(2147483647.9));
  EXPECT_EQ(INT32_MIN, lx::TruncateToInt32(-2147483648.9));
}

TEST(TruncateToInt32, GivesTheSmallestNumberForWhatHasNoValue) {
  for (const double value : {kNan, kInf, -kInf, 1e30, -1e30, 2147483648.0, -2147483649.0}) {
    EXPECT_EQ(INT32_MIN, lx::TruncateToInt32(value)) << value;
  }
}

TEST(ClampToUnit, TakesNotANumberAndTheInfinitesToTheEnds) {
  EXPECT_EQ(0.0, lx::ClampToUnit(kNan));
  EXPECT_EQ(0.0, lx::ClampToUnit(-kInf));
  EXPECT_EQ(1.0, lx::ClampToUnit(kInf));
  EXPECT_EQ(0.25, lx::ClampToUnit(0.25));
}

TEST(NarrowToFloat, SaturatesToInfinityBeyondTheRange) {
  EXPECT_EQ(std::numeric_limits<float>::infinity(), lx::NarrowToFloat(1e300));
  EXPECT_EQ(-std::numeric_limits<float>::infinity(), lx::NarrowToFloat(-1e300));
  EXPECT_EQ(std::numeric_limits<float>::max(),
            lx::NarrowToFloat(std::numeric_limits<float>::max()));
  EXPECT_TRUE(std::isnan(lx::NarrowToFloat(kNan)));
}

}  // namespace
