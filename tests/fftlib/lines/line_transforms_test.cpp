// SPDX-License-Identifier: BSD-3-Clause
// Which lengths of lines there are transforms for.
#include "fftlib/lines/line_transforms.h"

#include <gtest/gtest.h>

#include <cstdint>

namespace {

TEST(LineTransforms, AreThereForThePowersOfTwoUpTo8192) {
  for (std::int32_t length = 2; length <= 8192; length *= 2) {
    EXPECT_NE(nullptr, lx::FindLineTransformsF32(length)) << length;
    EXPECT_NE(nullptr, lx::FindLineTransformsF64(length)) << length;
    EXPECT_NE(nullptr, lx::FindRealLineTransforms(length)) << length;
  }
}

TEST(LineTransforms, AreNotThereForOtherLengths) {
  for (const std::int32_t length : {INT32_MIN, -2, 0, 1, 3, 6, 8191, 16384, INT32_MAX}) {
    EXPECT_EQ(nullptr, lx::FindLineTransformsF32(length)) << length;
    EXPECT_EQ(nullptr, lx::FindLineTransformsF64(length)) << length;
    EXPECT_EQ(nullptr, lx::FindRealLineTransforms(length)) << length;
  }
}

// A line of ones has its sum, the length, in the first place and zeros elsewhere.
TEST(LineTransforms, AreThoseOfTheirLength) {
  float line[2 * 64];
  for (std::int32_t length = 2; length <= 64; length *= 2) {
    for (std::int32_t i = 0; i < length; ++i) {
      line[2 * i] = 1.0F;
      line[2 * i + 1] = 0.0F;
    }

    lx::FindLineTransformsF32(length)->forward(line);

    EXPECT_EQ(static_cast<float>(length), line[0]);
    for (std::int32_t i = 1; i < 2 * length; ++i) {
      EXPECT_EQ(0.0F, line[i]) << length << " at " << i;
    }
  }
}

}  // namespace
