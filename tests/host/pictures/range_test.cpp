// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/floats/range.h"

#include <gtest/gtest.h>

#include <cmath>
#include <limits>
#include <string>

#include "host/support/failure.h"

namespace {

using glimmerhost::RangeMapping;

constexpr float kInfinity = std::numeric_limits<float>::infinity();
constexpr float kNoNumber = std::numeric_limits<float>::quiet_NaN();

TEST(RangeMapping, LeavesUnitValuesAloneByDefault) {
  for (const RangeMapping& range : {RangeMapping(), RangeMapping::Parse("clip")}) {
    EXPECT_TRUE(range.IsPlain());
    EXPECT_EQ(0.0F, range.ToUnit(0.0F));
    EXPECT_EQ(0.3F, range.ToUnit(0.3F));
    EXPECT_EQ(1.0F, range.ToUnit(1.0F));
    EXPECT_EQ(0.3F, range.FromUnit(0.3F));
  }
}

TEST(RangeMapping, ScalesInProportion) {
  const RangeMapping range = RangeMapping::Parse("scale:16");
  EXPECT_FALSE(range.IsPlain());
  EXPECT_EQ(16.0F, range.Max());
  EXPECT_EQ(0.0F, range.ToUnit(0.0F));
  EXPECT_EQ(0.0625F, range.ToUnit(1.0F));
  EXPECT_EQ(0.5F, range.ToUnit(8.0F));
  EXPECT_EQ(1.0F, range.ToUnit(16.0F));
  EXPECT_EQ(4.0F, range.FromUnit(0.25F));
}

TEST(RangeMapping, FollowsItsCurveInLog) {
  // 1 + 64 * 15.984375 is 1024, of which the logarithm is 10; of 1 + 64 * 0.484375, 32, it is 5.
  const RangeMapping range = RangeMapping::Parse("log:15.984375");
  EXPECT_FLOAT_EQ(0.5F, range.ToUnit(0.484375F));
  EXPECT_FLOAT_EQ(0.1F, range.ToUnit(1.0F / 64.0F));
  EXPECT_FLOAT_EQ(0.484375F, range.FromUnit(0.5F));
  EXPECT_EQ(0.0F, range.ToUnit(0.0F));
  EXPECT_EQ(0.0F, range.FromUnit(0.0F));
  EXPECT_EQ(1.0F, range.ToUnit(15.984375F));
  EXPECT_EQ(15.984375F, range.FromUnit(1.0F));
}

TEST(RangeMapping, BringsWhatHasNoPlaceToAnEnd) {
  for (const char* text : {"clip", "scale:16", "log:16"}) {
    const RangeMapping range = RangeMapping::Parse(text);
    EXPECT_EQ(0.0F, range.ToUnit(-1.0F)) << text;
    EXPECT_EQ(0.0F, range.ToUnit(-kInfinity)) << text;
    EXPECT_EQ(0.0F, range.ToUnit(kNoNumber)) << text;
    EXPECT_EQ(1.0F, range.ToUnit(17.0F)) << text;
    EXPECT_EQ(1.0F, range.ToUnit(std::numeric_limits<float>::max())) << text;
    EXPECT_EQ(1.0F, range.ToUnit(kInfinity)) << text;
  }
}

TEST(RangeMapping, ComesBackToEverySampleOf16Bits) {
  for (const char* text : {"clip", "scale:0.5", "scale:65504", "log:1", "log:16", "log:65504"}) {
    const RangeMapping range = RangeMapping::Parse(text);
    for (int sample = 0; sample <= 65535; ++sample) {
      const float back = range.ToUnit(range.FromUnit(static_cast<float>(sample) / 65535.0F));
      ASSERT_EQ(sample, std::lround(back * 65535.0F)) << text;
    }
  }
}

TEST(RangeMapping, RefusesOtherTextsAndSaysWhatIsAllowed) {
  for (const char* text : {"", "linear", "scale", "scale:", "scale:0", "scale:-1", "scale:nan",
                           "scale:inf", "scale:65505", "scale:1e99", "scale:16x", "log:", "log:0",
                           "clip:1", "SCALE:2", "scale: 2"}) {
    try {
      RangeMapping::Parse(text);
      ADD_FAILURE() << text;
    } catch (const glimmerhost::UsageError& fault) {
      const std::string quote = std::string(text).find_first_of(" ") < 99 || *text == 0 ? "\"" : "";
      EXPECT_EQ(
          "--range must be clip, scale:MAX or log:MAX, with MAX above 0 and up to 65504, not " +
              quote + text + quote,
          fault.what());
    }
  }
}

}  // namespace
