// SPDX-License-Identifier: BSD-3-Clause
// How alpha and odd values fare around a transform of colours.
#include "host/pictures/colour_path.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <limits>
#include <vector>

namespace {

using glimmerhost::Alpha;
using glimmerhost::ColourTransform;
using glimmerhost::TransformColours;

class Squares final : public ColourTransform {
 public:
  void Apply(std::vector<float>* colours) const override {
    for (float& value : *colours) {
      value *= value;
    }
  }
};

// As curves for film do with black.
class AddsAnEighth final : public ColourTransform {
 public:
  void Apply(std::vector<float>* colours) const override {
    for (float& value : *colours) {
      value += 0.125F;
    }
  }
};

// Mixes channels, and so would make of what is infinite, or no number, more of it.
class MixesRedIntoAll final : public ColourTransform {
 public:
  void Apply(std::vector<float>* colours) const override {
    for (std::size_t i = 0; i + 2 < colours->size(); i += 3) {
      const float red = (*colours)[i];
      (*colours)[i + 1] += 0.0F * red;
      (*colours)[i + 2] += 0.5F * red;
    }
  }
};

using Values = std::vector<float>;

Values Transformed(const ColourTransform& transform, Alpha alpha, Values pixels) {
  TransformColours(transform, alpha, &pixels);
  return pixels;
}

TEST(TransformColours, TakesOpaqueAndStraightColoursAsTheyAre) {
  EXPECT_EQ((Values{0.25F, 0.0F, 1.0F, 4.0F, 0.0625F, 0.25F}),
            Transformed(Squares(), Alpha::kNone, {0.5F, 0.0F, 1.0F, -2.0F, 0.25F, 0.5F}));
  EXPECT_EQ((Values{0.25F, 0.0F, 1.0F, 0.5F}),
            Transformed(Squares(), Alpha::kStraight, {0.5F, 0.0F, 1.0F, 0.5F}));
}

TEST(TransformColours, DividesPremultipliedColoursByAlphaBeforeAndMultipliesAfter) {
  // 0.25 of 0.5 is a colour of 0.5, squared 0.25, of which 0.5 is 0.125.
  EXPECT_EQ((Values{0.125F, 0.5F, 0.0F, 0.5F}),
            Transformed(Squares(), Alpha::kPremultiplied, {0.25F, 0.5F, 0.0F, 0.5F}));
}

TEST(TransformColours, LeavesNothingNothing) {
  EXPECT_EQ((Values{0.0F, 0.0F, 0.0F, 0.0F}),
            Transformed(AddsAnEighth(), Alpha::kPremultiplied, {0.0F, 0.0F, 0.0F, 0.0F}));
  EXPECT_EQ((Values{0.125F, 0.125F, 0.125F}),
            Transformed(AddsAnEighth(), Alpha::kNone, {0.0F, 0.0F, 0.0F}));
}

TEST(TransformColours, TakesLightWithoutABodyAsItIs) {
  EXPECT_EQ((Values{0.25F, 4.0F, 0.0F, 0.0F}),
            Transformed(Squares(), Alpha::kPremultiplied, {0.5F, 2.0F, 0.0F, 0.0F}));
}

TEST(TransformColours, KeepsWhatIsNoNumberToItsOwnSample) {
  const float none = std::numeric_limits<float>::quiet_NaN();

  const Values result = Transformed(MixesRedIntoAll(), Alpha::kNone, {none, 0.25F, 0.5F});

  EXPECT_NE(result[0], result[0]);
  EXPECT_EQ(0.25F, result[1]);
  EXPECT_EQ(0.5F, result[2]);
}

TEST(TransformColours, KeepsTheInfiniteToItsOwnSample) {
  const float infinite = std::numeric_limits<float>::infinity();
  EXPECT_EQ((Values{infinite, 0.25F, 0.5F}),
            Transformed(MixesRedIntoAll(), Alpha::kNone, {infinite, 0.25F, 0.5F}));
}

TEST(TransformColours, TakesLightsAsBrightAsFloatsHold) {
  EXPECT_EQ((Values{1e6F, 0.0F, 5e5F}),
            Transformed(MixesRedIntoAll(), Alpha::kNone, {1e6F, 0.0F, 0.0F}));
  // A glow under hardly any alpha: its colour is 2^20.
  EXPECT_EQ((Values{1024.0F, 0.0F, 512.0F, 0x1p-10F}),
            Transformed(MixesRedIntoAll(), Alpha::kPremultiplied, {1024.0F, 0.0F, 0.0F, 0x1p-10F}));
}

}  // namespace
