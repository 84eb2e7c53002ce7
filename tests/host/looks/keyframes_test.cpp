// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/keyframes.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/support/failure.h"

namespace {

using glimmerhost::Course;
using glimmerhost::Keyframe;
using glimmerhost::ParseKeyframes;
using glimmerhost::ValueAt;

TEST(Keyframes, AreReadAsWritten) {
  const auto keys = ParseKeyframes("--emphasis", "0=50; 24~=60; 30 |= 12.5;-1=220");
  ASSERT_EQ(4U, keys.size());
  EXPECT_EQ(0, keys[0].time);
  EXPECT_EQ(Course::kLinear, keys[0].course);
  EXPECT_EQ("50", keys[0].value);
  EXPECT_EQ(24, keys[1].time);
  EXPECT_EQ(Course::kSmooth, keys[1].course);
  EXPECT_EQ(Course::kHeld, keys[2].course);
  EXPECT_EQ("12.5", keys[2].value);
  EXPECT_EQ(-1, keys[3].time);
  EXPECT_EQ("220", keys[3].value);
}

TEST(Keyframes, MayHoldAnyText) {
  const auto keys = ParseKeyframes("--center", "0=50%,50%; 10=100px, 20px;");
  ASSERT_EQ(2U, keys.size());
  EXPECT_EQ("100px, 20px", keys[1].value);
}

TEST(Keyframes, AreToldFromAValue) {
  EXPECT_FALSE(glimmerhost::HasKeyframes("50"));
  EXPECT_FALSE(glimmerhost::HasKeyframes("50%,50%"));
  EXPECT_TRUE(glimmerhost::HasKeyframes("0=50"));
}

TEST(Keyframes, RefuseWhatIsNone) {
  for (const char* text : {"=50", "a=50", "0=", "0==5", "0=5=6", "0=5;;1=6", "1.5=3", "~=3",
                           "0=1; x", "0=1 1=2", "0&=5"}) {
    try {
      ParseKeyframes("--emphasis", text);
      ADD_FAILURE() << text;
    } catch (const glimmerhost::UsageError& fault) {
      EXPECT_EQ(0U,
                std::string(fault.what()).find("--emphasis " + std::string(text) + ": must be"));
    }
  }
}

TEST(Keyframes, HoldTheirEnds) {
  const std::vector<Keyframe> keys{{10, Course::kLinear, 3.0}, {20, Course::kLinear, 5.0}};
  EXPECT_EQ(3.0, ValueAt(keys, -100));
  EXPECT_EQ(3.0, ValueAt(keys, 10));
  EXPECT_EQ(5.0, ValueAt(keys, 20));
  EXPECT_EQ(5.0, ValueAt(keys, 21));
  EXPECT_EQ(7.0, ValueAt({{5, Course::kSmooth, 7.0}}, 6));
}

TEST(Keyframes, RunStraight) {
  const std::vector<Keyframe> keys{{0, Course::kLinear, 50.0}, {8, Course::kLinear, 60.0}};
  EXPECT_EQ(51.25, ValueAt(keys, 1));
  EXPECT_EQ(55.0, ValueAt(keys, 4));
}

TEST(Keyframes, StayUntilTheNext) {
  const std::vector<Keyframe> keys{{0, Course::kHeld, 50.0}, {8, Course::kLinear, 60.0}};
  EXPECT_EQ(50.0, ValueAt(keys, 7));
  EXPECT_EQ(60.0, ValueAt(keys, 8));
}

// Points of a straight line stay on it, and of a parabola's four the middle is exact.
TEST(Keyframes, RunSmoothlyThroughTheirNeighbours) {
  std::vector<Keyframe> line;
  std::vector<Keyframe> parabola;
  for (const int time : {0, 4, 8, 12}) {
    line.push_back({time, Course::kSmooth, 2.0 * time});
    parabola.push_back({time, Course::kSmooth, 1.0 * time * time});
  }
  for (int time = 0; time <= 12; ++time) {
    EXPECT_DOUBLE_EQ(2.0 * time, ValueAt(line, time)) << time;
  }
  for (int time = 4; time <= 8; ++time) {
    EXPECT_DOUBLE_EQ(1.0 * time * time, ValueAt(parabola, time)) << time;
  }
}

// Slopes from the neighbours' distance in time: (10-0)/(4+1) on the left, 0 on the right of a
// segment of four frames.
TEST(Keyframes, RunSmoothlyWhereTimesDiffer) {
  const std::vector<Keyframe> keys{{-1, Course::kLinear, 0.0},
                                   {0, Course::kSmooth, 0.0},
                                   {4, Course::kSmooth, 10.0},
                                   {6, Course::kLinear, 0.0}};
  // Hermite at the half: (p0 + p1) / 2 + (m0 - m1) / 8, with m0 = 10/5*4 and m1 = 0.
  EXPECT_DOUBLE_EQ(5.0 + 8.0 / 8.0, ValueAt(keys, 2));
}

TEST(Keyframes, MayBeAsFarApartAsTheirTimesCanSay) {
  const std::vector<Keyframe> keys = {{-100, Course::kLinear, 4.0},
                                      {2147483647, Course::kSmooth, 9.0}};
  EXPECT_NEAR(4.0, ValueAt(keys, 0), 1e-6);
  EXPECT_NEAR(6.5, ValueAt(keys, 1073741773), 1e-6);
  const std::vector<Keyframe> smooth = {{-2147483647, Course::kSmooth, 4.0},
                                        {2147483647, Course::kSmooth, 9.0}};
  EXPECT_NEAR(6.5, ValueAt(smooth, 0), 1e-6);
}

}  // namespace
