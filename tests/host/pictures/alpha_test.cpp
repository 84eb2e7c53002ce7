// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/alpha.h"

#include <gtest/gtest.h>

#include <cmath>

namespace {

using glimmerhost::Alpha;
using glimmerhost::Picture;

TEST(Alpha, MultipliesToTheNearest) {
  for (int alpha = 0; alpha < 65536; alpha += 257) {
    for (int colour = 0; colour < 65536; colour += 251) {
      const double exact = static_cast<double>(colour) * alpha / 65535.0;
      ASSERT_NEAR(exact, glimmerhost::Multiplied(colour, alpha), 0.5 + 1e-9);
    }
  }
}

TEST(Alpha, DividesToTheNearestAndAtMostToWhite) {
  EXPECT_EQ(0, glimmerhost::Divided(500, 0));
  EXPECT_EQ(65535, glimmerhost::Divided(500, 499));
  for (int alpha = 1; alpha < 65536; alpha += 97) {
    const int colour = alpha / 3;
    ASSERT_NEAR(colour * 65535.0 / alpha, glimmerhost::Divided(colour, alpha), 0.5 + 1e-9);
  }
}

TEST(Alpha, ComesBackWhereItIsOpaque) {
  for (int colour = 0; colour < 65536; ++colour) {
    ASSERT_EQ(colour, glimmerhost::Divided(glimmerhost::Multiplied(colour, 65535), 65535));
  }
}

TEST(Alpha, ConvertsOnlyWhatIsInTheOtherForm) {
  Picture picture;
  picture.width = picture.height = 1;
  picture.samples = {40000, 20000, 10000, 32768};
  const auto before = picture.samples;
  picture.alpha = Alpha::kNone;
  glimmerhost::Premultiply(&picture);
  EXPECT_EQ(before, picture.samples);

  picture.alpha = Alpha::kStraight;
  glimmerhost::Premultiply(&picture);
  EXPECT_EQ(Alpha::kPremultiplied, picture.alpha);
  EXPECT_EQ(20000, picture.samples[0]);
  EXPECT_EQ(32768, picture.samples[3]);
  glimmerhost::Premultiply(&picture);
  EXPECT_EQ(20000, picture.samples[0]);
  glimmerhost::Unpremultiply(&picture);
  EXPECT_NEAR(40000, picture.samples[0], 1);
}

}  // namespace
