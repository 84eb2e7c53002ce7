// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/units.h"

#include <gtest/gtest.h>

#include <limits>
#include <string>
#include <utility>

#include "host/looks/page.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace {

using glimmerhost::UsageError;

TEST(Radius, IsInPixelsPercentOrTheEffectsMeasure) {
  EXPECT_EQ(0.08, glimmerhost::ParseRadius("--radius", "40px", 1000).part);
  EXPECT_EQ(0.04, glimmerhost::ParseRadius("--radius", "4%", 1000).part);
  EXPECT_EQ(0.125, glimmerhost::ParseRadius("--radius", "0.125", 1000).part);
}

TEST(Radius, NamesOptionValueAndWhatIsAllowed) {
  for (const std::string text : {"", "px", "4 px", "4pxx", "x", "1e999", "nan", "0x10", "4%%"}) {
    try {
      glimmerhost::ParseRadius("--radius-x", text, 100);
      FAIL() << text;
    } catch (const UsageError& fault) {
      const std::string line = fault.what();
      EXPECT_NE(std::string::npos, line.find("--radius-x must be ")) << line;
      EXPECT_NE(std::string::npos, line.find("40px")) << line;
    }
  }
}

TEST(Point, CountsPixelsFromTheTopLeftAndFractionsFromTheBottom) {
  const auto pixels = glimmerhost::ParsePoint("--center", "100px,49px", 200, 100);
  EXPECT_EQ(0.5, pixels.x);
  EXPECT_EQ(0.5, pixels.y);  // row 49 from the top is row 50 from the bottom
  const auto fractions = glimmerhost::ParsePoint("--center", "0.25,75%", 200, 100);
  EXPECT_EQ(0.25, fractions.x);
  EXPECT_EQ(0.75, fractions.y);
}

TEST(Point, RefusesHalvesAndMixtures) {
  for (const char* text : {"", "1", "1,", ",1", "1px,1", "1,2,3", "a,b"}) {
    EXPECT_THROW(glimmerhost::ParsePoint("--center", text, 10, 10), UsageError) << text;
  }
}

TEST(Ratio, IsTwoWholeNumbers) {
  const auto ratio = glimmerhost::ParseRatio("--pixel-aspect", "16:15");
  EXPECT_EQ(16, ratio.first);
  EXPECT_EQ(15, ratio.second);
  for (const char* text :
       {"", "1", ":", "1:", "0:1", "1:0", "-1:1", "1.5:1", "1:2:3", "1:9999999"}) {
    EXPECT_THROW(glimmerhost::ParseRatio("--pixel-aspect", text), UsageError) << text;
  }
}

TEST(Number, IsAllOfTheText) {
  double number = 0;
  EXPECT_TRUE(glimmerhost::ParseNumber("-0.5e1", &number));
  EXPECT_EQ(-5.0, number);
  EXPECT_TRUE(glimmerhost::ParseNumber("+3", &number));
  for (const char* text : {"", "1 ", " 1", "1,5", "inf", "nan", "1e400"}) {
    EXPECT_FALSE(glimmerhost::ParseNumber(text, &number)) << text;
  }
}

TEST(Text, CrossesTheBorderAsUtf8) {
  EXPECT_EQ("a\xC3\xA9\xE2\x82\xAC\xF0\x9F\x98\x80",
            glimmerhost::ToUtf8(u"a\u00E9\u20AC\U0001F600"));
  const char16_t alone[] = {0xD800, u'x', 0};
  EXPECT_EQ("\xEF\xBF\xBDx", glimmerhost::ToUtf8(alone));
  EXPECT_EQ(u"PRM_Shape", glimmerhost::ToWide("PRM_Shape"));
}

}  // namespace
