// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/slider_scale.h"

#include <gtest/gtest.h>

namespace glimmerhost {
namespace {

Parameter Number(double lowest, double highest, Measure measure, Kind kind = Kind::kNumber) {
  Parameter parameter;
  parameter.kind = kind;
  parameter.measure = measure;
  parameter.lowest = parameter.typedLowest = lowest;
  parameter.highest = parameter.typedHighest = highest;
  return parameter;
}

// 625 to the power of the travel: 5, 25, 125 at its quarters.
TEST(SliderScale, GivesRadiiToATenthOfTheWidthThreeQuartersOfTheTravel) {
  const SliderScale scale(Number(0.0, 1.0, Measure::kRadius));
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.0), 0.0);
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.25), 4.0 / 624.0);
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.5), 24.0 / 624.0);
  // A diameter of a fifth.
  EXPECT_NEAR(scale.ValueAt(0.75), 0.2, 0.002);
  EXPECT_DOUBLE_EQ(scale.ValueAt(1.0), 1.0);
}

TEST(SliderScale, SpreadsASymmetricRangeAboutItsMiddle) {
  const SliderScale scale(Number(-3600.0, 3600.0, Measure::kPlain));
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.5), 0.0);
  EXPECT_NEAR(scale.ValueAt(0.75), 138.46, 0.01);
  EXPECT_NEAR(scale.ValueAt(0.25), -138.46, 0.01);
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.0), -3600.0);
}

TEST(SliderScale, GivesThePictureMostOfTheTravelOfAPlace) {
  const SliderScale scale(Number(-1.0, 2.0, Measure::kX));
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.0), -1.0);
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.05), -0.5);
  EXPECT_NEAR(scale.ValueAt(0.1), 0.0, 1e-15);
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.3), 0.25);
  EXPECT_DOUBLE_EQ(scale.ValueAt(0.9), 1.0);
  EXPECT_DOUBLE_EQ(scale.ValueAt(1.0), 2.0);
}

TEST(SliderScale, IsEvenForOtherRangesAndStepsByWholeNumbers) {
  const SliderScale even(Number(1.0, 50.0, Measure::kPlain));
  EXPECT_DOUBLE_EQ(even.ValueAt(0.5), 25.5);
  EXPECT_NEAR(even.FinestChange(), 0.049, 1e-12);
  const SliderScale whole(Number(3.0, 50.0, Measure::kPlain, Kind::kWhole));
  EXPECT_DOUBLE_EQ(whole.Step(), 1.0 / 47.0);
  EXPECT_DOUBLE_EQ(whole.FineStep(), 1.0 / 47.0);
}

TEST(SliderScale, FindsTheTravelOfAValueAndItsEndsForThoseOutside) {
  const Parameter ranges[] = {Number(0.0, 1.0, Measure::kRadius),
                              Number(-3600.0, 3600.0, Measure::kPlain),
                              Number(-1.0, 2.0, Measure::kY), Number(1.0, 50.0, Measure::kPlain)};
  for (const Parameter& range : ranges) {
    const SliderScale scale(range);
    for (int i = 0; i <= 100; ++i) {
      EXPECT_NEAR(scale.TravelOf(scale.ValueAt(i / 100.0)), i / 100.0, 1e-12);
    }
    EXPECT_EQ(scale.TravelOf(range.lowest - 1.0), 0.0);
    EXPECT_EQ(scale.TravelOf(range.highest + 400.0), 1.0);
  }
}

}  // namespace
}  // namespace glimmerhost
