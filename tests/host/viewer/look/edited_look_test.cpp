// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/edited_look.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <random>
#include <string>
#include <vector>

#include "host/looks/keyframed_values.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

constexpr int kWidth = 800;
constexpr int kHeight = 600;
const ShotSpan kSpan{1001, 1010};

const Page& ThePage() {
  static const Page page = Page::Load(PAGE);
  return page;
}

KeyframedValues ValuesOf(const Look& look) {
  return {ThePage(), {{"", look}}, kWidth, kHeight, kSpan};
}

FrameValues AllAt(const EditedLook& look, int frame) {
  FrameValues all = ValuesOf(look.Texts()).At(frame);
  all[kMix] = ValuesOf(look.Texts()).MixAt(frame);
  return all;
}

EditedLook Using(const Look& look) {
  EditedLook edited(ThePage());
  edited.Use(look);
  return edited;
}

TEST(EditedLook, HasNothingThatWasNeverSet) {
  EXPECT_EQ(EditedLook(ThePage()).Texts(), Look());
  EXPECT_EQ(EditedLook(ThePage()).TextOf("sides"), "");
}

TEST(EditedLook, SetsEveryKeyOnceByItsFinestName) {
  Look look;
  look["radius"] = "40px";
  look["radius-y"] = "8px";
  look["center"] = "50%,20%";
  look["spread"] = "disc.png";
  look.set = {"PRM_Sides=5", "PRM_Center_X=0.25", "PRM_Precision=on", "PRM_Sides=6"};

  Look expected;
  expected["radius-x"] = "40px";
  expected["radius-y"] = "8px";
  expected["center"] = "0.25,20%";
  expected["spread"] = "disc.png";
  expected["sides"] = "6";
  expected.set = {"PRM_Precision=on"};
  EXPECT_EQ(Using(look).Texts(), expected);
}

TEST(EditedLook, KeepsHalvesOfAPointThatDoNotGoIntoOneText) {
  Look look;
  look["center"] = "100px,50px";
  look.set = {"PRM_Center_X=0.25"};

  EditedLook edited = Using(look);

  EXPECT_EQ(edited.Texts(), look);
  EXPECT_EQ(edited.NameOf("PRM_Center_X"), "PRM_Center_X");
  EXPECT_EQ(edited.NameOf("PRM_Center_Y"), "center");
  edited.SetText("center", "0.1,0.2");
  look["center"] = "0.1,0.2";
  look.set.clear();
  EXPECT_EQ(edited.Texts(), look);
}

TEST(EditedLook, RefusesNamesThatThePageHasNot) {
  EditedLook edited(ThePage());
  Look look;
  look.set = {"PRM_Nothing=1"};

  EXPECT_THROW(edited.Use(look), UsageError);
  EXPECT_THROW(edited.SetText("radios", "1"), UsageError);
  EXPECT_EQ(edited.Texts(), Look());
}

Look RandomLook(std::mt19937* random) {
  const auto pick = [&](const std::vector<std::string>& texts) {
    return texts[(*random)() % texts.size()];
  };
  const std::vector<std::string> radii = {"", "", "4px", "0.1", "1001=1%; 60% ~= 3px; last=9%"};
  Look look;
  look["radius"] = pick(radii);
  look["radius-x"] = pick(radii);
  look["radius-psf1"] = pick(radii);
  look["center"] = pick({"", "10%,20%", "3px,4px", "first=0,0;1007~=1,1", "1002=1px,2px"});
  look["sides"] = pick({"", "4", "1001=3; 1009=9"});
  look["shape"] = pick({"", "image", "1005=image; 1003=circle"});
  look["mix"] = pick({"", "0.5", "first=0; last-2=1"});
  for (std::size_t count = (*random)() % 4; count > 0; --count) {
    look.set.push_back(pick({"PRM_RadiusX=0.2", "PRM_RadiusY=0.3", "PRM_Sides=11", "PRM_Shape=1",
                             "PRM_Center_X=0.25", "PRM_Center_Y=1001=0;1004=1", "PRM_Match=on",
                             "PRM_Precision=on", "PRM_RadiusX=1001=0;1004=1"}));
  }
  return look;
}

TEST(EditedLook, GivesTheStoreTheValuesOfTheLookThatItTook) {
  std::mt19937 random(19);
  for (int round = 0; round < 500; ++round) {
    const Look look = RandomLook(&random);
    const EditedLook edited = Using(look);
    for (int frame = 1001; frame <= 1010; frame += 3) {
      ASSERT_EQ(ValuesOf(look).At(frame), ValuesOf(edited.Texts()).At(frame)) << "round " << round;
      ASSERT_EQ(ValuesOf(look).MixAt(frame), ValuesOf(edited.Texts()).MixAt(frame));
    }
    ASSERT_EQ(Using(edited.Texts()).Texts(), edited.Texts()) << "round " << round;
  }
}

// A value of a parameter that may be any number of its range.
Value RandomValue(const std::string& key, std::mt19937* random) {
  const double part = std::uniform_real_distribution(0.0, 1.0)(*random);
  return key == kMix || key != "PRM_Rotation" ? part : part * 360.0;
}

TEST(EditedLook, TakesValuesAtAFrameToTheLastBit) {
  std::mt19937 random(20);
  for (int round = 0; round < 300; ++round) {
    EditedLook edited = Using(RandomLook(&random));
    const int frame = 1001 + static_cast<int>(random() % 10);
    FrameValues wanted = AllAt(edited, frame);
    for (const char* key : {"PRM_RadiusX", "PRM_Center_X", "PRM_Center_Y", "PRM_Rotation", kMix}) {
      wanted[key] = RandomValue(key, &random);
    }

    edited.SetValues(wanted, frame, AllAt(edited, frame), kSpan);

    ASSERT_EQ(AllAt(edited, frame), wanted) << "round " << round;
  }
}

TEST(EditedLook, LeavesTheTextOfAValueThatIsThereAlready) {
  Look look;
  look["radius-x"] = "40px";
  look["sides"] = "5";
  EditedLook edited = Using(look);

  edited.SetValues({{"PRM_RadiusX", 0.1}, {"PRM_Sides", 7.0}}, 1001, AllAt(edited, 1001), kSpan);

  look["sides"] = "7";
  EXPECT_EQ(edited.Texts(), look);
}

TEST(EditedLook, TakesTheOtherHalfOfAPointFromTheFrame) {
  Look look;
  look["center"] = "first=0,0; last=0.9,0.9";
  EditedLook edited = Using(look);

  edited.SetValues({{"PRM_Center_X", 0.75}}, 1006, AllAt(edited, 1006), kSpan);

  EXPECT_EQ(edited.TextOf("center"), "first=0,0; 1006=0.75,0.5; last=0.9,0.9");
}

TEST(EditedLook, LeavesTheKeyframesOfAPointsOtherHalf) {
  Look look;
  look["center"] = "0.1,0.2";
  look.set = {"PRM_Center_Y=1001=0; 1010=0.9"};
  EditedLook edited = Using(look);

  edited.SetValues({{"PRM_Center_X", 0.75}}, 1001, AllAt(edited, 1001), kSpan);

  EXPECT_EQ(AllAt(edited, 1001)["PRM_Center_X"], Value(0.75));
  EXPECT_EQ(edited.TextOf("PRM_Center_Y"), "1001=0; 1010=0.9");
  edited.SetText("PRM_Center_Y", "");
  EXPECT_EQ(edited.NameOf("PRM_Center_Y"), "center");
  EXPECT_EQ(AllAt(edited, 1010)["PRM_Center_X"], Value(0.75));
}

// What lies beyond the keyframes next to the edit is as it was; with a smooth course, beyond the
// ones after these.
TEST(EditedLook, LeavesValuesAloneThatLieBeyondTheNextKeyframes) {
  const std::vector<std::string> texts = {"1001=1%; 1004=9px; 1007=4%; last=0.01",
                                          "first|=1%; 1004|=9px; 1007|=4%; last|=0.01"};
  for (const std::string& text : texts) {
    Look look;
    look["radius-x"] = text;
    EditedLook edited = Using(look);
    const KeyframedValues before = ValuesOf(look);

    edited.SetTextAt("radius-x", 1006, "77px", kSpan);
    edited.SetKeyframe("radius-x", 1005, AllAt(edited, 1005), kSpan);

    const KeyframedValues after = ValuesOf(edited.Texts());
    EXPECT_EQ(std::get<double>(after.At(1006).at("PRM_RadiusX")), 2 * 77.0 / kWidth);
    for (const int frame : {1001, 1002, 1003, 1004, 1007, 1008, 1009, 1010}) {
      EXPECT_EQ(before.At(frame), after.At(frame)) << text << ", frame " << frame;
    }
  }
}

TEST(EditedLook, ChangesNoValueWhereAKeyframeIsSet) {
  Look look;
  look["radius-x"] = "40px";
  look["mix"] = "first=0; last=0.9";
  EditedLook edited = Using(look);

  edited.SetKeyframe("radius-x", 1003, AllAt(edited, 1003), kSpan);
  edited.SetKeyframe("mix", 1004, AllAt(edited, 1004), kSpan);
  edited.SetKeyframe("emphasis", 1004, AllAt(edited, 1004), kSpan);
  edited.SetKeyframe("spread", 1004, AllAt(edited, 1004), kSpan);

  EXPECT_EQ(edited.TextOf("radius-x"), "1003=40px");
  EXPECT_EQ(edited.TextOf("emphasis"), "1004=1");
  EXPECT_EQ(edited.TextOf("spread"), "");
  for (int frame = 1001; frame <= 1010; ++frame) {
    EXPECT_EQ(ValuesOf(look).At(frame), ValuesOf(edited.Texts()).At(frame));
    EXPECT_NEAR(ValuesOf(look).MixAt(frame), ValuesOf(edited.Texts()).MixAt(frame), 1e-15);
  }
  EXPECT_EQ(edited.KeyframedNames(), (std::vector<std::string>{"radius-x", "emphasis", "mix"}));
}

TEST(EditedLook, LeavesTheLastKeyframesValueForAllFrames) {
  Look look;
  look["radius-x"] = "first=4px; last=9px";
  EditedLook edited = Using(look);

  edited.RemoveKeyframe("radius-x", 1005, kSpan);
  edited.RemoveKeyframe("radius-x", 1010, kSpan);
  EXPECT_EQ(edited.TextOf("radius-x"), "first=4px");
  edited.RemoveKeyframe("radius-x", 1001, kSpan);
  EXPECT_EQ(edited.TextOf("radius-x"), "4px");
  edited.RemoveKeyframe("radius-x", 1001, kSpan);
  edited.MoveKeyframes("radius-x", {1001}, 3, kSpan);
  EXPECT_EQ(edited.TextOf("radius-x"), "4px");
}

TEST(EditedLook, ResetsByAnEmptyTextAlsoWhatSetsSeveral) {
  Look look;
  look["radius"] = "4px";
  look["sides"] = "4";
  look.set = {"PRM_Precision=on"};
  EditedLook edited = Using(look);
  EXPECT_EQ(edited.TextOf("radius"), "4px");
  EXPECT_EQ(edited.TextOf("PRM_Sides"), "4");
  EXPECT_EQ(edited.TextOf("PRM_Precision"), "on");

  edited.SetText("radius", "");
  edited.SetText("PRM_Sides", "");
  edited.SetText("PRM_Precision", "");

  EXPECT_EQ(edited.Texts(), Look());
}

}  // namespace
}  // namespace glimmerhost
