// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/mix.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <vector>

namespace {

using glimmerhost::Mixed;
using glimmerhost::MixSamples;
using Samples = std::vector<std::uint16_t>;

TEST(Mix, LiesBetweenFrameAndBlurByItsWeight) {
  const struct {
    std::uint16_t frame;
    std::uint16_t blurred;
    double weight;
    std::uint16_t expected;
  } cases[] = {
      {1000, 3000, 0.25, 1500}, {3000, 1000, 0.25, 2500}, {0, 65535, 0.5, 32768},
      {65535, 0, 0.5, 32768},   {10, 11, 0.499, 10},      {10, 11, 0.5, 11},
      {11, 10, 0.5, 11},        {11, 10, 0.501, 10},      {0, 65535, 0.75, 49151},
  };
  for (const auto& [frame, blurred, weight, expected] : cases) {
    EXPECT_EQ(expected, Mixed(frame, blurred, weight))
        << frame << " and " << blurred << " by " << weight;
  }
}

TEST(Mix, OfZeroIsTheFrameAndOfOneTheBlurInEveryCode) {
  for (int sample = 0; sample <= 65535; ++sample) {
    const auto one = static_cast<std::uint16_t>(sample);
    const auto other = static_cast<std::uint16_t>(sample * 40503);
    ASSERT_EQ(one, Mixed(one, other, 0.0));
    ASSERT_EQ(other, Mixed(one, other, 1.0));
  }
}

TEST(Mix, TakesAlphaAlong) {
  Samples blurred{4000, 4000, 4000, 40000};

  MixSamples({2000, 0, 4000, 20000}, 0.5, nullptr, &blurred);

  EXPECT_EQ((Samples{3000, 2000, 4000, 30000}), blurred);
}

// 13107 is a fifth, and 65535 is 1. Of the second pixel only the other channels are bright.
TEST(Mix, IsTimesTheMasksFirstChannel) {
  glimmerhost::Picture mask;
  mask.width = 3;
  mask.height = 1;
  mask.samples = {13107, 0, 0, 0, 0, 65535, 65535, 65535, 65535, 0, 0, 65535};
  Samples blurred(12, 1000);

  MixSamples(Samples(12, 2000), 0.5, &mask, &blurred);

  EXPECT_EQ((Samples{1900, 1900, 1900, 1900, 2000, 2000, 2000, 2000, 1500, 1500, 1500, 1500}),
            blurred);
}

}  // namespace
