// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/look_layers.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <fstream>
#include <random>
#include <string>
#include <vector>

#include "host/looks/keyframed_values.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::KeyframedValues;
using glimmerhost::Look;
using glimmerhost::LookLayer;
using glimmerhost::MergeLayers;
using glimmerhost::Page;
using glimmerhost::ShotSpan;
using glimmerhost::TypedLook;

const Page& ThePage() {
  static const Page page = Page::Load(PAGE);
  return page;
}

LookLayer Layer(const Look& look) { return {"--", look}; }

TEST(MergedLayers, DropAllThatIsDecidedAnew) {
  TypedLook below;
  below["radius-x"] = "8px";
  below["sides"] = "5";
  below.set = {"PRM_RadiusY=0.5", "PRM_Rotation=3", "PRM_Precision=on"};
  TypedLook above;
  above["radius"] = "40px";
  above["rotation"] = "7";
  above.set = {"PRM_Sides=9", "PRM_Sides=8"};

  const Look merged = MergeLayers(ThePage(), {Layer(below), Layer(above)});

  Look expected;
  expected["radius"] = "40px";
  expected["rotation"] = "7";
  expected.set = {"PRM_Precision=on", "PRM_Sides=8"};
  EXPECT_EQ(expected, merged);
}

TEST(MergedLayers, KeepTheRadiusUnderThatOfOneSide) {
  TypedLook below;
  below["radius"] = "1=40px; 9=50px";
  TypedLook above;
  above["radius-y"] = "8px";

  const Look merged = MergeLayers(ThePage(), {Layer(below), Layer(above)});

  EXPECT_EQ("1=40px; 9=50px", merged.At("radius"));
  EXPECT_EQ("8px", merged.At("radius-y"));
}

// Whatever is in the layers, and however often.
TEST(MergedLayers, GiveTheStoreTheValuesOfTheLayers) {
  const Page& page = ThePage();
  const std::vector<std::string> radii = {"", "", "4px", "0.1", "1001=1%; 1006~=3%; last=9%"};
  const std::vector<std::string> assignments = {"PRM_RadiusX=0.2",
                                                "PRM_RadiusY=0.3",
                                                "PRM_Sides=11",
                                                "PRM_Shape=1",
                                                "PRM_Center_X=0.25",
                                                "PRM_RadiusPSF1=0.125",
                                                "PRM_RadiusX=1001=0;1004=1",
                                                "PRM_Match=on"};
  std::mt19937 random(20);
  const auto pick = [&](const std::vector<std::string>& texts) {
    return texts[random() % texts.size()];
  };
  for (int round = 0; round < 500; ++round) {
    std::vector<LookLayer> layers;
    for (int i = 0; i < 3; ++i) {
      Look values;
      values["radius"] = pick(radii);
      values["radius-x"] = pick(radii);
      values["radius-y"] = pick(radii);
      values["radius-psf1"] = pick(radii);
      values["center"] = pick({"", "10%,20%", "first=0,0;1010=1,1"});
      values["sides"] = pick({"", "", "4"});
      values["shape"] = pick({"", "", "image"});
      values["match"] = pick({"", "off"});
      for (std::size_t count = random() % 4; count > 0; --count) {
        values.set.push_back(pick(assignments));
      }
      layers.push_back(Layer(values));
    }
    const ShotSpan span{1001, 1010};
    const KeyframedValues expected(page, layers, 800, 600, span);
    const KeyframedValues merged(page, {Layer(MergeLayers(page, layers))}, 800, 600, span);
    const KeyframedValues used(page, {Layer(UsedLook(page, layers))}, 800, 600, span);
    for (int frame = 1001; frame <= 1010; frame += 3) {
      ASSERT_EQ(expected.At(frame), merged.At(frame)) << "round " << round;
      ASSERT_EQ(expected.At(frame), used.At(frame)) << "round " << round;
    }
  }
}

TEST(UsedLook, HasEveryParameter) {
  TypedLook typed;
  typed["sides"] = "5";

  const Look used = UsedLook(ThePage(), {Layer(typed)});

  EXPECT_EQ("circle", used.At("shape"));
  EXPECT_EQ("", used.At("radius"));
  EXPECT_EQ("0.02", used.At("radius-x"));
  EXPECT_EQ("0.02", used.At("radius-y"));
  EXPECT_EQ("off", used.At("match"));
  EXPECT_EQ("5", used.At("sides"));
  EXPECT_EQ("0", used.At("rotation"));
  EXPECT_EQ("0.5,0.5", used.At("center"));
  EXPECT_EQ("0.02", used.At("radius-psf1"));
  EXPECT_EQ("0.04", used.At("radius-psf2"));
  EXPECT_EQ("1", used.At("emphasis"));
  EXPECT_EQ("off", used.At("emph-alpha"));
  EXPECT_EQ("premultiplied", used.At("alpha"));
  EXPECT_EQ(std::vector<std::string>{"PRM_Precision=off"}, used.set);
}

TEST(PictureLook, TakesFromFilesWhatWasNotTyped) {
  const lx_test::ScratchFolder folder;
  std::ofstream(folder / "film.toml") << "alpha = \"as-is\"\npixel-aspect = \"16:15\"\n";
  TypedLook typed;
  typed.file = (folder / "film.toml").string();
  typed["pixel-aspect"] = "2:1";

  const auto look = PictureLookOf(ThePage(), ReadLayers(ThePage(), typed));

  EXPECT_EQ("as-is", look.alpha);
  EXPECT_EQ("2:1", look.pixelAspect);
  EXPECT_EQ("", look.spread);
  EXPECT_EQ("premultiplied", PictureLookOf(ThePage(), ReadLayers(ThePage(), {})).alpha);
}

}  // namespace
