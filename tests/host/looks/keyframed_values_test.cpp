// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/keyframed_values.h"

#include <gtest/gtest.h>

#include <map>
#include <string>
#include <vector>

#include "host/looks/timed_texts.h"
#include "host/support/failure.h"

namespace {

using glimmerhost::KeyframedValues;
using glimmerhost::Page;
using glimmerhost::ShotSpan;
using glimmerhost::TypedLook;
using glimmerhost::Value;

KeyframedValues Over(const TypedLook& typed, const ShotSpan& span = {1001, 1100}) {
  const Page page = Page::Load(PAGE);
  return {page, ReadLayers(page, typed), 800, 600, span};
}

double Number(const KeyframedValues& values, int frame, const char* key) {
  return std::get<double>(values.At(frame).at(key));
}

TEST(KeyframedValues, AreTheSameForEveryFrameWithoutKeyframes) {
  TypedLook typed;
  typed["emphasis"] = "50";
  const KeyframedValues values = Over(typed);
  EXPECT_FALSE(values.IsAnimated());
  EXPECT_EQ(values.At(1001), values.At(1100));
}

TEST(KeyframedValues, CountTimesInTheShot) {
  TypedLook typed;
  typed["emphasis"] = "first=50; 1025=60; last=222";
  const KeyframedValues values = Over(typed);
  EXPECT_TRUE(values.IsAnimated());
  EXPECT_EQ(50.0, Number(values, 1001, "PRM_Emphasis"));
  EXPECT_EQ(55.0, Number(values, 1013, "PRM_Emphasis"));
  EXPECT_EQ(60.0, Number(values, 1025, "PRM_Emphasis"));
  // Seventy-five frames on is the last.
  EXPECT_EQ(60.0 + 162.0 / 75.0, Number(values, 1026, "PRM_Emphasis"));
  EXPECT_EQ(222.0, Number(values, 1100, "PRM_Emphasis"));
}

TEST(KeyframedValues, MixAllOfTheBlurUnlessToldOtherwise) {
  EXPECT_EQ(1.0, Over({}).MixAt(1001));
  TypedLook typed;
  typed["mix"] = "0.25";
  EXPECT_EQ(0.25, Over(typed).MixAt(1050));
  EXPECT_FALSE(Over(typed).At(1001).contains("mix"));
}

// 800 x 600 with 100 pixels more on each side: 4% of 800 are 3.2% of 1000.
TEST(KeyframedValues, KeepApertureAndPlaceOfAPictureThatHasGrown) {
  TypedLook typed;
  typed["radius"] = "4%";
  typed["center"] = "25%,0%";
  typed["rotation"] = "30";
  const auto values = Over(typed).AtGrown(1001, 100);
  EXPECT_DOUBLE_EQ(0.032, std::get<double>(values.at("PRM_RadiusX")));
  EXPECT_DOUBLE_EQ(0.032, std::get<double>(values.at("PRM_RadiusY")));
  EXPECT_DOUBLE_EQ(0.3, std::get<double>(values.at("PRM_Center_X")));
  EXPECT_DOUBLE_EQ(0.125, std::get<double>(values.at("PRM_Center_Y")));
  EXPECT_DOUBLE_EQ(30.0, std::get<double>(values.at("PRM_Rotation")));
  EXPECT_EQ(Over(typed).At(1001), Over(typed).AtGrown(1001, 0));
}

TEST(KeyframedValues, MoveTheMix) {
  TypedLook typed;
  typed["mix"] = "0=0; 8=1";
  const KeyframedValues values = Over(typed, {0, 10});
  EXPECT_TRUE(values.IsAnimated());
  EXPECT_EQ(0.25, values.MixAt(2));
  EXPECT_EQ(1.0, values.MixAt(9));
}

TEST(KeyframedValues, RefuseAMixBeyondItsRange) {
  for (const char* text : {"-0.1", "1.5", "half", "0=0; 4=2"}) {
    TypedLook typed;
    typed["mix"] = text;
    try {
      Over(typed, {0, 4});
      FAIL() << text;
    } catch (const glimmerhost::UsageError& fault) {
      EXPECT_EQ(0U, std::string(fault.what()).find("--mix must be a number from 0 to 1, not "))
          << fault.what();
    }
  }
}

TEST(KeyframedValues, MoveRadiiInTheirUnits) {
  TypedLook typed;
  typed["radius"] = "0=40px; 10=80px";
  const KeyframedValues values = Over(typed, {0, 10});
  EXPECT_DOUBLE_EQ(0.15, Number(values, 5, "PRM_RadiusX"));
  EXPECT_DOUBLE_EQ(0.15, Number(values, 5, "PRM_RadiusY"));
}

TEST(KeyframedValues, MoveAPointOnBothAxes) {
  TypedLook typed;
  typed["center"] = "0=0%,0%; 4=100%,50%";
  const KeyframedValues values = Over(typed, {0, 4});
  EXPECT_DOUBLE_EQ(0.25, Number(values, 1, "PRM_Center_X"));
  EXPECT_DOUBLE_EQ(0.125, Number(values, 1, "PRM_Center_Y"));
}

TEST(KeyframedValues, HoldWhatHasNothingBetween) {
  TypedLook typed;
  typed["shape"] = "0=circle; 5~=polygon";
  typed["match"] = "0|=on; 3|=off";
  const KeyframedValues values = Over(typed, {0, 9});
  EXPECT_EQ(Value(0), values.At(4).at("PRM_Shape"));
  EXPECT_EQ(Value(2), values.At(5).at("PRM_Shape"));
  EXPECT_EQ(Value(true), values.At(2).at("PRM_Match"));
  EXPECT_EQ(Value(false), values.At(3).at("PRM_Match"));
}

TEST(KeyframedValues, KeepSidesWholeAndSmoothCoursesInTheirRange) {
  TypedLook typed;
  typed["sides"] = "0=3; 4=5";
  typed["emphasis"] = "0=0; 10~=500; 20~=500; 30=0";
  const KeyframedValues values = Over(typed, {0, 30});
  EXPECT_EQ(4.0, Number(values, 1, "PRM_Sides"));  // 3.5 rounds away from 0
  EXPECT_EQ(4.0, Number(values, 2, "PRM_Sides"));
  EXPECT_EQ(500.0, Number(values, 15, "PRM_Emphasis"));
}

TEST(KeyframedValues, ComeFromAssignmentsToo) {
  TypedLook typed;
  typed.set = {"PRM_Rotation=first=0; last=90"};
  EXPECT_EQ(45.0, Number(Over(typed, {5, 7}), 6, "PRM_Rotation"));
}

TEST(KeyframedValues, RefuseAKeyframeThatThePageDoesNotAllow) {
  TypedLook typed;
  typed["emphasis"] = "first=50; last=501";
  try {
    Over(typed);
    FAIL();
  } catch (const glimmerhost::UsageError& fault) {
    EXPECT_STREQ("--emphasis must be a number from 0 to 500 (the page offers 1 to 50), not 501",
                 fault.what());
  }
}

TEST(KeyframedValues, RefuseTwoKeyframesAtOneTime) {
  TypedLook typed;
  typed["emphasis"] = "first=50; last=60; last=70";
  try {
    Over(typed);
    FAIL();
  } catch (const glimmerhost::UsageError& fault) {
    EXPECT_NE(std::string::npos, std::string(fault.what()).find("are at the time last"))
        << fault.what();
  }
}

// A shot of one frame is its own end; one of four has a middle between two frames.
TEST(KeyframedValues, TakeTheLastWrittenWhereAShortShotBringsTimesTogether) {
  TypedLook typed;
  typed["emphasis"] = "last=60; 50%=70; first=50";
  EXPECT_EQ(50.0, Number(Over(typed, {7, 7}), 7, "PRM_Emphasis"));
  const KeyframedValues four = Over(typed, {7, 10});
  EXPECT_EQ(50.0, Number(four, 7, "PRM_Emphasis"));
  EXPECT_DOUBLE_EQ(50.0 + 20.0 * 2.0 / 3.0, Number(four, 8, "PRM_Emphasis"));
  EXPECT_EQ(60.0, Number(four, 10, "PRM_Emphasis"));
  typed["emphasis"] = "first=50; 8=70; first+1=80";
  EXPECT_EQ(80.0, Number(Over(typed, {7, 9}), 8, "PRM_Emphasis"));
}

// A preset's times do not matter where the value is typed.
TEST(KeyframedValues, NeedNoShotForTimesThatALayerGoesOver) {
  const Page page = Page::Load(PAGE);
  glimmerhost::Look below;
  below["radius"] = "first=1px; last=9px";
  glimmerhost::Look above;
  above["radius"] = "5px";
  const ShotSpan unknown;
  EXPECT_NO_THROW(KeyframedValues(page, {{"below: ", below}, {"--", above}}, 800, 600, unknown));
  EXPECT_THROW(KeyframedValues(page, {{"below: ", below}}, 800, 600, unknown),
               glimmerhost::UsageError);
  EXPECT_EQ(0U, TimedTexts(page, {{"below: ", below}, {"--", above}}).size());
}

TEST(TimedTexts, NameTheOptionAndWhereItComesFrom) {
  const Page page = Page::Load(PAGE);
  glimmerhost::Look below;
  below["radius"] = "0=1px; 9=9px";
  below["emphasis"] = "50";
  glimmerhost::Look above;
  above.set = {"PRM_Rotation=5=0; 20=90"};

  const auto timed = TimedTexts(page, {{"film.toml: ", below}, {"--", above}});

  ASSERT_EQ(2U, timed.size());
  EXPECT_EQ("film.toml: radius", timed[0].name);
  EXPECT_EQ("--set: PRM_Rotation", timed[1].name);
  EXPECT_EQ((std::vector<int>{9, 20}), FramesOutside(timed, {0, 8}));
  EXPECT_EQ(std::vector<int>{}, FramesOutside(timed, {0, 20}));
  EXPECT_THROW(FramesOutside(timed, {1, 20}), glimmerhost::UsageError);
}

TEST(StillValues, AreOfTheFirstFrameOfTheShotThatTheLookNames) {
  TypedLook typed;
  typed["emphasis"] = "first=50; last=60";
  const Page page = Page::Load(PAGE);
  const auto still = [&] {
    return std::get<double>(
        StillValues(page, ReadLayers(page, typed), 800, 600).at("PRM_Emphasis"));
  };
  EXPECT_EQ(60.0, still());
  typed["shot"] = "1001-1010";
  EXPECT_EQ(50.0, still());
}

}  // namespace
