// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/look_values.h"

#include <gtest/gtest.h>

#include "host/support/failure.h"

namespace glimmerhost {
namespace {

const Page& ThePage() {
  static const Page page = Page::Load(PAGE);
  return page;
}

TEST(LookValues, LeaveOutWhatDoesNotGoWithThePictureAndTellOfIt) {
  Look look;
  look["radius-x"] = "300px";
  look["sides"] = "5";
  look["mix"] = "1=0; last=1";
  look.set = {"PRM_Precision=on"};

  const LookValues fits(ThePage(), look, {1000, 500, {1, 5}});
  EXPECT_EQ(fits.Fault(), "");
  EXPECT_EQ(fits.At(3).at("PRM_RadiusX"), Value(0.6));
  EXPECT_EQ(fits.MixAt(3), 0.5);

  const LookValues narrow(ThePage(), look, {500, 500, {}});
  EXPECT_NE(narrow.Fault().find("mix"), std::string::npos) << narrow.Fault();
  EXPECT_EQ(narrow.At(3).at("PRM_RadiusX"), Value(0.02));
  EXPECT_EQ(narrow.MixAt(3), 1.0);
  EXPECT_EQ(narrow.At(3).at("PRM_Sides"), Value(5.0));
  EXPECT_EQ(narrow.At(3).at("PRM_Precision"), Value(true));
}

TEST(LookValues, CountTimesInTheLooksOwnShot) {
  Look look;
  look["mix"] = "first=0; last=1";
  look["shot"] = "11-21";

  const LookValues values(ThePage(), look, {1000, 500, {1, 5}});

  EXPECT_EQ(values.Span(), (ShotSpan{11, 21}));
  EXPECT_EQ(values.MixAt(16), 0.5);
}

TEST(CheckedLook, IsRefusedForWhatNoFrameNeeds) {
  const LookPicture picture;
  const auto check = [&](const std::string& name, const std::string& text) {
    Look look;
    look[name] = text;
    CheckLook(ThePage(), look, picture);
  };
  check("alpha", "as-is");
  EXPECT_THROW(check("alpha", "straight"), UsageError);
  EXPECT_THROW(check("pixel-aspect", "0:1"), UsageError);
  EXPECT_THROW(check("shot", "soon"), UsageError);
  EXPECT_THROW(check("spread", "two\nlines.png"), UsageError);
  EXPECT_THROW(check("radius", "4furlongs"), UsageError);
}

}  // namespace
}  // namespace glimmerhost
