// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/shown_number.h"

#include <gtest/gtest.h>

#include "host/viewer/look/slider_scale.h"

namespace glimmerhost {
namespace {

Parameter Radius() {
  Parameter parameter;
  parameter.measure = Measure::kRadius;
  parameter.highest = parameter.typedHighest = 1.0;
  return parameter;
}

TEST(ShownNumber, HasTheUnitThatRadiiAreShownIn) {
  EXPECT_EQ(ShownNumber(Radius(), RadiusUnit::kPixels, 1920).Short(0.04), "38.4px");
  EXPECT_EQ(ShownNumber(Radius(), RadiusUnit::kPercent, 1920).Short(0.04), "4%");
  EXPECT_EQ(ShownNumber(Radius(), RadiusUnit::kPart, 1920).Short(0.04), "0.04");
  Parameter plain = Radius();
  plain.measure = Measure::kPlain;
  EXPECT_EQ(ShownNumber(plain, RadiusUnit::kPixels, 1920).Short(1.0 / 3.0), "0.333333");
}

// A finest step near 0 is 0.0103 thousandths: 0.0099 pixels.
TEST(ShownNumber, RoundsToWhatASliderTellsApart) {
  EXPECT_EQ(ShownNumber(Radius(), RadiusUnit::kPixels, 1920).Rounded(0.0412345678), "39.59px");
  EXPECT_EQ(ShownNumber(Radius(), RadiusUnit::kPercent, 1920).Rounded(0.0412345678), "4.123%");
  EXPECT_EQ(ShownNumber(Radius(), RadiusUnit::kPart, 1920).Rounded(0.0412345678), "0.04123");
  EXPECT_DOUBLE_EQ(ShownNumber(Radius(), RadiusUnit::kPixels, 1920).RoundedValue(0.0412345678),
                   39.59 / 960.0);
  Parameter whole = Radius();
  whole.kind = Kind::kWhole;
  whole.measure = Measure::kPlain;
  whole.highest = 50.0;
  EXPECT_EQ(ShownNumber(whole, RadiusUnit::kPixels, 1920).Rounded(4.6), "5");
}

TEST(ShownNumber, RoundsNoFineStepAway) {
  const SliderScale scale(Radius());
  for (const int width : {16, 1920, 32768}) {
    for (const RadiusUnit unit : {RadiusUnit::kPixels, RadiusUnit::kPercent, RadiusUnit::kPart}) {
      const ShownNumber shown(Radius(), unit, width);
      double value = 0.0;
      for (int step = 0; step < 1000; ++step) {
        const double travel = scale.TravelOf(value) + scale.FineStep();
        const double next = shown.RoundedValue(scale.ValueAt(travel));
        ASSERT_GT(next, value) << width << " at " << value;
        value = next;
      }
    }
  }
}

}  // namespace
}  // namespace glimmerhost
