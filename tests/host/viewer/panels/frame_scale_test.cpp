// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/frame_scale.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

namespace glimmerhost {
namespace {

TEST(ShotFrames, FindTheNearestFrameThatTheClipHas) {
  const ShotFrames shot({9, 1, 3, 10});
  EXPECT_EQ(shot.First(), 1);
  EXPECT_EQ(shot.Last(), 10);
  EXPECT_EQ(shot.Count(), 4);
  EXPECT_EQ(shot.Nearest(-5), 1);
  EXPECT_EQ(shot.Nearest(2), 1);
  EXPECT_EQ(shot.Nearest(6.5), 9);
  EXPECT_EQ(shot.Nearest(99), 10);
  EXPECT_EQ(shot.Beside(3, 1), 9);
  EXPECT_EQ(shot.Beside(3, -1), 1);
  EXPECT_EQ(shot.Beside(9, 100), 10);
  EXPECT_EQ(ShotFrames().Nearest(7), 1);
}

TEST(FrameScale, HasTheFirstFrameAtOneEndAndTheLastAtTheOther) {
  const FrameScale scale(1001, 1101, 50.0, 200.0);
  EXPECT_DOUBLE_EQ(scale.XOf(1001), 50.0);
  EXPECT_DOUBLE_EQ(scale.XOf(1101), 250.0);
  EXPECT_DOUBLE_EQ(scale.XOf(1026.5), 101.0);
  EXPECT_DOUBLE_EQ(scale.FrameAt(101.0), 1026.5);
  EXPECT_DOUBLE_EQ(FrameScale(7, 7, 50.0, 200.0).XOf(7), 150.0);
}

TEST(FrameScale, NamesRoundFramesOfItsRuler) {
  const auto wide = [](int) { return 30.0; };
  EXPECT_EQ(FrameScale(1001, 1010, 0.0, 300.0).Labels(wide),
            (std::vector<int>{1001, 1002, 1003, 1004, 1005, 1006, 1007, 1008, 1009, 1010}));
  EXPECT_EQ(FrameScale(1001, 1101, 0.0, 200.0).Labels(wide),
            (std::vector<int>{1020, 1040, 1060, 1080, 1100}));
  EXPECT_EQ(FrameScale(-7, 8, 0.0, 100.0).Labels(wide), (std::vector<int>{-5, 0, 5}));
}

TEST(FrameScale, LetsNoTwoNumbersOverlap) {
  std::mt19937 random(7);
  const auto widthOf = [](int frame) {
    return 8.0 * static_cast<double>(std::to_string(frame).size()) + 6.0;
  };
  for (int round = 0; round < 2000; ++round) {
    const int first = static_cast<int>(random() % 4000) - 2000;
    const int last = first + static_cast<int>(random() % (round % 2 == 0 ? 50 : 90000));
    const FrameScale scale(first, last, 30.0, 1.0 + static_cast<double>(random() % 2000));
    const std::vector<int> labels = scale.Labels(widthOf);
    for (std::size_t i = 1; i < labels.size(); ++i) {
      const double room = (widthOf(labels[i - 1]) + widthOf(labels[i])) / 2.0;
      ASSERT_GE(scale.XOf(labels[i]) - scale.XOf(labels[i - 1]), room)
          << first << " to " << last << " at " << labels[i];
    }
  }
}

TEST(FrameScale, HasTicksThatMeetItsNumbers) {
  const FrameScale narrow(1, 1001, 0.0, 1000.0);
  EXPECT_EQ(narrow.TickStep(50), 5);
  EXPECT_EQ(narrow.TickStep(100), 5);
  EXPECT_EQ(narrow.TickStep(2), 2);
  EXPECT_EQ(FrameScale(1, 11, 0.0, 1000.0).TickStep(5), 1);
}

}  // namespace
}  // namespace glimmerhost
