// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/grow.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <optional>
#include <string>
#include <vector>

#include "host/looks/page.h"
#include "host/support/failure.h"

namespace {

using glimmerhost::GrowthOf;
using glimmerhost::KeyframedValues;
using glimmerhost::Page;
using glimmerhost::Picture;
using glimmerhost::ShotSpan;
using glimmerhost::TypedLook;

KeyframedValues Over(const TypedLook& typed, const ShotSpan& span) {
  return {Page::Load(PAGE), {{"--", typed}}, 800, 600, span};
}

int Growth(const std::string& radius, const ShotSpan& span) {
  TypedLook typed;
  typed["radius"] = radius;
  return GrowthOf(Over(typed, span), span, 800);
}

TEST(Grow, PutsTransparentBlackAround) {
  Picture picture;
  picture.width = 2;
  picture.height = 1;
  picture.samples = {1, 2, 3, 4, 5, 6, 7, 8};

  glimmerhost::GrowPicture(1, &picture);

  EXPECT_EQ(4, picture.width);
  EXPECT_EQ(3, picture.height);
  EXPECT_EQ(1, picture.grownBy);
  std::vector<std::uint16_t> expected(4 * 3 * 4, 0);
  for (std::uint16_t i = 0; i < 8; ++i) {
    expected[4 * 4 + 4 + i] = static_cast<std::uint16_t>(i + 1);
  }
  EXPECT_EQ(expected, picture.samples);
}

// A pixel more than the radius, since an aperture may sit that much beside its point.
TEST(Grow, ReachesWholePixelsBeyondTheRadius) {
  const ShotSpan still{1, 1};
  EXPECT_EQ(11, Growth("10px", still));
  EXPECT_EQ(12, Growth("10.25px", still));
  EXPECT_EQ(17, Growth("4%", still));
}

TEST(Grow, IsThatOfTheLargestApertureOfTheShot) {
  EXPECT_EQ(31, Growth("0=10px; 4=30px; 8=5px", {0, 8}));
  // The largest lies between the frames' own keyframes and is never reached behind the shot's end.
  EXPECT_EQ(21, Growth("0=10px; 4=30px; 8=5px", {0, 2}));
}

TEST(Grow, OfAShotWithoutAnEndNeedsValuesThatStay) {
  const ShotSpan open{1, std::nullopt};
  EXPECT_EQ(11, Growth("10px", open));
  EXPECT_THROW(Growth("1=10px; 4=30px", open), glimmerhost::UsageError);
}

}  // namespace
