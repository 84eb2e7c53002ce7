// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/pixel_aspect.h"

#include <gtest/gtest.h>

#include <limits>
#include <utility>

namespace {

TEST(PixelAspect, IsFoundForWhatAFileHolds) {
  for (const auto& [first, second] :
       {std::pair{1, 1}, {16, 15}, {10, 11}, {2, 1}, {64, 45}, {1, 2}}) {
    const auto ratio =
        glimmerhost::NearestRatio(static_cast<float>(first) / static_cast<float>(second));
    EXPECT_EQ(first, ratio.first);
    EXPECT_EQ(second, ratio.second);
  }
  for (const double none : {0.0, -1.0, std::numeric_limits<double>::quiet_NaN(), 1e30}) {
    EXPECT_EQ(1, glimmerhost::NearestRatio(none).first);
    EXPECT_EQ(1, glimmerhost::NearestRatio(none).second);
  }
}

}  // namespace
