// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/frame_list.h"

#include <gtest/gtest.h>

#include <string>
#include <vector>

#include "host/support/failure.h"

namespace {

using Frames = std::vector<int>;

Frames Parse(const std::string& text) { return glimmerhost::ParseFrames("--frames", text); }

TEST(FrameList, HasFramesAndRanges) {
  EXPECT_EQ((Frames{7}), Parse("7"));
  EXPECT_EQ((Frames{1, 2, 3, 20, 21}), Parse("1-3,20-21"));
  EXPECT_EQ((Frames{1001, 1002}), Parse("1001-1002"));
}

TEST(FrameList, StepsThroughARange) {
  EXPECT_EQ((Frames{1, 6, 11}), Parse("1-12x5"));
  EXPECT_EQ((Frames{1, 4}), Parse("1-4x3"));
  EXPECT_EQ((Frames{5}), Parse("5-5x9"));
}

TEST(FrameList, RunsBackwards) {
  EXPECT_EQ((Frames{3, 2, 1}), Parse("3-1"));
  EXPECT_EQ((Frames{10, 6, 2}), Parse("10-1x4"));
}

TEST(FrameList, GoesBelowZero) {
  EXPECT_EQ((Frames{-2, -1, 0, 1}), Parse("-2-1"));
  EXPECT_EQ((Frames{-3, -4, -5}), Parse("-3--5"));
}

TEST(FrameList, TakesAFrameOnce) { EXPECT_EQ((Frames{2, 3, 1, 4}), Parse("2-3,1-4,3")); }

TEST(FrameList, RefusesWhatIsNone) {
  for (const char* text :
       {"", ",", "1,", ",1", "1-", "1--", "a", "1-5x0", "1-5x-1", "1-5x", "1 2", "1;2", "0x10",
        "1-5y2", "999999999", "-2147483648", "1.5", "+1", "1-10 "}) {
    try {
      Parse(text);
      ADD_FAILURE() << text;
    } catch (const glimmerhost::UsageError& fault) {
      EXPECT_EQ(0U, std::string(fault.what()).find("--frames must be "));
    }
  }
}

TEST(FrameList, RefusesMoreThanAMillionFrames) {
  EXPECT_EQ(1000000U, Parse("1-1000000").size());
  EXPECT_THROW(Parse("0-1000000"), glimmerhost::UsageError);
  EXPECT_THROW(Parse("-99999999-99999999"), glimmerhost::UsageError);
}

// Each costs time, also where it adds none.
TEST(FrameList, CountsFramesThatAreNamedAgain) {
  EXPECT_EQ(500000U, Parse("1-500000,500000-1").size());
  EXPECT_THROW(Parse("1-500000,500000-1,7"), glimmerhost::UsageError);
}

TEST(FrameList, IsShownAsItReadsBack) {
  for (const char* text : {"7", "1-3", "1-3,20-21", "1-11x5", "3-1", "10-2x4", "-2-1", "-3--5",
                           "1,3", "1,5-4,9", "1-9x2,20"}) {
    EXPECT_EQ(text, glimmerhost::ShowFrames(Parse(text)));
  }
  EXPECT_EQ("1-3", glimmerhost::ShowFrames({1, 2, 3}));
  EXPECT_EQ("", glimmerhost::ShowFrames({}));
}

}  // namespace
