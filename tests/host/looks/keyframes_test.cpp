// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/keyframes.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "host/support/failure.h"

namespace {

using glimmerhost::Course;
using glimmerhost::FrameOf;
using glimmerhost::Keyframe;
using glimmerhost::KeyframeTime;
using glimmerhost::ParseKeyframes;
using glimmerhost::ShotSpan;
using glimmerhost::ValueAt;

TEST(Keyframes, AreReadAsWritten) {
  const auto keys = ParseKeyframes("--emphasis", "1001=50; 1024~=60; first+30 |= 12.5;last=220");
  ASSERT_EQ(4U, keys.size());
  EXPECT_EQ(KeyframeTime::From::kZero, keys[0].time.from);
  EXPECT_EQ(1001.0, keys[0].time.number);
  EXPECT_EQ("1001", keys[0].time.text);
  EXPECT_EQ(Course::kLinear, keys[0].course);
  EXPECT_EQ("50", keys[0].value);
  EXPECT_EQ(1024.0, keys[1].time.number);
  EXPECT_EQ(Course::kSmooth, keys[1].course);
  EXPECT_EQ(Course::kHeld, keys[2].course);
  EXPECT_EQ("first+30", keys[2].time.text);
  EXPECT_EQ("12.5", keys[2].value);
  EXPECT_EQ(KeyframeTime::From::kLast, keys[3].time.from);
  EXPECT_EQ("220", keys[3].value);
}

TEST(Keyframes, HaveTimesThatBelongToTheShot) {
  const ShotSpan shot{1001, 1101};
  const struct {
    const char* time;
    double frame;
  } cases[] = {{"1006", 1006.0}, {"first", 1001.0},     {"first+12", 1013.0}, {"first - 3", 998.0},
               {"last", 1101.0}, {"last-12", 1089.0},   {"last + 1", 1102.0}, {"0%", 1001.0},
               {"25%", 1026.0},  {"12.3%", 1013.3},     {"66.6 %", 1067.6},   {"100%", 1101.0},
               {"5", 5.0},       {"99999999", 99999999}};
  for (const auto& [time, frame] : cases) {
    const std::string text = std::string(time) + "=1";
    const auto keys = ParseKeyframes("--emphasis", text);
    EXPECT_DOUBLE_EQ(frame, FrameOf(keys.at(0).time, shot, "--emphasis", text)) << time;
  }
  const auto before = ParseKeyframes("--emphasis", "-3=1").at(0).time;
  EXPECT_EQ(-3.0, FrameOf(before, {-5, 5}, "--emphasis", "-3=1"));
}

// They counted from the shot's first frame and from its end.
TEST(Keyframes, RefuseAFrameOfZeroOrBelowThatTheShotHasNot) {
  for (const char* text : {"0=1", "-1=1"}) {
    const auto time = ParseKeyframes("--radius", text).at(0).time;
    try {
      (void)FrameOf(time, {1001, 1100}, "--radius", text);
      ADD_FAILURE() << text;
    } catch (const glimmerhost::UsageError& fault) {
      EXPECT_EQ("--radius " + std::string(text) + ": the time " + time.text +
                    " is not in the shot 1001-1100; a time is a frame (1001), first, last, "
                    "first+12, last-12 or a part (25%)",
                fault.what());
    }
    EXPECT_EQ(time.number, FrameOf(time, {-2, 5}, "--radius", text));
  }
}

TEST(Keyframes, AskForTheShotWhereNobodyKnowsIt) {
  const ShotSpan unknown;
  const ShotSpan open{1, {}};
  const struct {
    const char* text;
    bool withoutFirst;  // whether it can be told where nothing is known
    bool withFirst;     // and where only the first frame is
  } cases[] = {{"7=1", true, true},      {"first=1", false, true},   {"first+5=1", false, true},
               {"last=1", false, false}, {"last-5=1", false, false}, {"50%=1", false, false},
               {"0%=1", false, true},    {"100%=1", false, false},   {"0=1", false, false},
               {"-1=1", false, false}};
  for (const auto& [text, withoutFirst, withFirst] : cases) {
    const auto time = ParseKeyframes("--radius", text).at(0).time;
    const auto told = [&](const ShotSpan& span) {
      try {
        (void)FrameOf(time, span, "--radius", text);
        return true;
      } catch (const glimmerhost::UsageError&) {
        return false;
      }
    };
    EXPECT_EQ(withoutFirst, told(unknown)) << text;
    EXPECT_EQ(withFirst, told(open)) << text;
  }
  try {
    (void)FrameOf(ParseKeyframes("--radius", "last=1").at(0).time, open, "--radius", "last=1");
    FAIL();
  } catch (const glimmerhost::UsageError& fault) {
    EXPECT_STREQ(
        "--radius last=1: the time last needs --shot FIRST-LAST: neither a pipe nor a still says "
        "which frames the shot has",
        fault.what());
  }
}

TEST(Keyframes, RefuseTwoAtTheSameWrittenTime) {
  for (const char* text : {"1001=5; 1001~=6", "first=5;0%=6", "last=5; last+0=6", "100%=1; last=2",
                           "50%=1; 50.0%=2", "first+3=1; last=2; first + 3=4"}) {
    try {
      ParseKeyframes("--emphasis", text);
      ADD_FAILURE() << text;
    } catch (const glimmerhost::UsageError& fault) {
      EXPECT_NE(std::string::npos,
                std::string(fault.what()).find(": two keyframes are at the time "))
          << fault.what();
    }
  }
  EXPECT_EQ(2U, ParseKeyframes("--emphasis", "first+3=1; last-3=2").size());
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
                           "0=1; x", "0=1 1=2", "0&=5", "firstly=3", "first+=3", "last--2=3",
                           "first+1.5=3", "101%=3", "-1%=3", "%=3", "first 3=1"}) {
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

TEST(Keyframes, RunSmoothlyAlongALine) {
  std::vector<Keyframe> line;
  for (const double time : {0.0, 4.0, 5.0, 12.0}) {
    line.push_back({time, Course::kSmooth, 2.0 * time});
  }
  for (int time = 0; time <= 12; ++time) {
    EXPECT_DOUBLE_EQ(2.0 * time, ValueAt(line, time)) << time;
  }
}

// The weighted harmonic mean of slopes 2 over 1 and 10 over 4: 3 * 5 / (9 / 2 + 6 / 2.5) on the
// left, and none at the top on the right.
TEST(Keyframes, RunSmoothlyWhereTimesDiffer) {
  const std::vector<Keyframe> keys{{-1, Course::kLinear, -2.0},
                                   {0, Course::kSmooth, 0.0},
                                   {4, Course::kSmooth, 10.0},
                                   {6, Course::kLinear, 0.0}};
  // Hermite at the half: (p0 + p1) / 2 + (m0 - m1) / 8.
  EXPECT_DOUBLE_EQ(5.0 + 4.0 * (15.0 / 6.9) / 8.0, ValueAt(keys, 2));
}

// Between two keyframes a value only rises or only falls, however unevenly they lie.
TEST(Keyframes, NeverOvershootWhereTheyRunSmoothly) {
  std::mt19937 random(17);
  for (int run = 0; run < 500; ++run) {
    std::vector<Keyframe> keys;
    double time = -20.0;
    for (int i = 0; i < 6; ++i) {
      time += 0.25 + static_cast<double>(random() % 1000) / (i % 2 == 0 ? 10.0 : 500.0);
      keys.push_back({time, Course::kSmooth, static_cast<double>(random() % 7)});
    }
    for (std::size_t i = 0; i + 1 < keys.size(); ++i) {
      const double sign = keys[i + 1].value < keys[i].value ? -1.0 : 1.0;
      double before = keys[i].value;
      for (int step = 0; step <= 64; ++step) {
        const double at = keys[i].time + (keys[i + 1].time - keys[i].time) * step / 64.0;
        const double value = ValueAt(keys, at);
        ASSERT_LE(sign * before, sign * value + 1e-9) << run << " " << i << " " << step;
        ASSERT_LE(sign * value, sign * keys[i + 1].value + 1e-9) << run << " " << i;
        before = value;
      }
    }
  }
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
