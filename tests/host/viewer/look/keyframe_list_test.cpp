// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/keyframe_list.h"

#include <gtest/gtest.h>

#include <vector>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

const ShotSpan kShotOfNine{1001, 1009};

KeyframeList ListOf(const std::string& text) { return {"radius", text, kShotOfNine}; }

// 25% of it is frame 1003.
constexpr const char* kText = "first = 4px; 25% ~= 3%;last|=9px";

TEST(KeyframeList, KeepsWhatNobodyEditsToTheLetter) {
  KeyframeList list = ListOf(kText);

  list.Set(1005, "7px");

  EXPECT_EQ(list.Text(), "first = 4px; 25% ~= 3%; 1005~=7px; last|=9px");
}

TEST(KeyframeList, ChangesTheValueOfAKeyframeAndNothingElse) {
  KeyframeList list = ListOf(kText);

  list.Set(1003, "2%");
  list.Set(1009, "8px");

  EXPECT_EQ(list.Text(), "first = 4px; 25%~=2%; last|=8px");
}

TEST(KeyframeList, LetsANewKeyframeGoOnAsThePartThatItLiesIn) {
  KeyframeList list = ListOf("1002|=1; 1005~=2");

  list.Set(1001, "0");
  list.Set(1003, "1");
  list.Set(1008, "2");

  EXPECT_EQ(list.Text(), "1001|=0; 1002|=1; 1003|=1; 1005~=2; 1008~=2");
}

TEST(KeyframeList, MovesKeyframesAndKeepsWhichEndTheyCountFrom) {
  KeyframeList list = ListOf("first+1=1; 1004=2; last=3; 25%=4");

  list.Move({1002, 1004, 1009}, -1);

  // The one at 25% is in the way of the one at 1004.
  EXPECT_EQ(list.Text(), "first=1; 1003=2; last-1=3");
}

TEST(KeyframeList, MovesOneBetweenTwoFramesToAFrame) {
  KeyframeList list("radius", "30%~=1; last=2", {1001, 1002});

  list.Move({1001.3}, 0);
  EXPECT_EQ(list.Text(), "30%~=1; last=2");
  list.Move({1001.3}, -1);

  EXPECT_EQ(list.Text(), "1000~=1; last=2");
}

TEST(KeyframeList, CountsTheLastWrittenOfSeveralAtOneFrame) {
  KeyframeList list = ListOf("1001=1; first=2; last=3");

  ASSERT_NE(list.At(1001), nullptr);
  EXPECT_EQ(list.At(1001)->key.value, "2");
  ASSERT_EQ(list.InTime().size(), 2U);
  EXPECT_EQ(list.InTime()[0].key.value, "2");
  list.Set(1001, "5");
  EXPECT_EQ(list.Text(), "1001=1; first=5; last=3");
  list.Remove(1001);
  EXPECT_EQ(list.Text(), "last=3");
}

TEST(KeyframeList, ChangesHowOneGoesOn) {
  KeyframeList list = ListOf(kText);

  list.SetCourse(1001, Course::kHeld);
  list.SetCourse(1003, Course::kSmooth);
  list.SetCourse(1004, Course::kHeld);

  EXPECT_EQ(list.Text(), "first|=4px; 25% ~= 3%; last|=9px");
}

TEST(KeyframeList, RefusesTimesThatTheShotDoesNotTell) {
  EXPECT_THROW(KeyframeList("radius", "first=1", {}), UsageError);
  EXPECT_THROW(KeyframeList("radius", "1=1;;2=3", {1, 9}), UsageError);
}

}  // namespace
}  // namespace glimmerhost
