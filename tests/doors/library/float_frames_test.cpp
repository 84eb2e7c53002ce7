// SPDX-License-Identifier: BSD-3-Clause
// Floats stay floats: above 1, below 0, and without what is no number.
#include <gtest/gtest.h>

#include <cmath>
#include <limits>

#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Blurred;
using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Noise;
using library_test::SumOf;

Floats Light(int width, int height, int x, int y, float value) {
  Floats pixels(width, height);
  for (int c = 0; c < 4; ++c) {
    pixels.At(x, y, c) = value;
  }
  return pixels;
}

TEST(LibraryFloats, KeepTheSumOfALightThatIsThousandTimesWhite) {
  const Floats dest = Blurred(Look(9.0), Light(61, 48, 30, 24, 1000.0F));
  for (int c = 0; c < 4; ++c) {
    EXPECT_NEAR(1000.0, SumOf(dest, c), 1e-3);
  }
  // Spread over a disc of 254 pixels.
  EXPECT_NEAR(1000.0 / 254.5, dest.At(30, 24, 0), 0.05);
}

// The straight line that the curve goes on as above 1, by hand: at emphasis 20 its slope is 400, so
// a light of 5 counts 1 + 4 * 400; a pixel of the aperture holds that over N, if that is above 1.
TEST(LibraryFloats, OpenALightAboveWhiteByTheCurvesStraightEnd) {
  const Floats plain = Blurred(Look(6.0), Light(41, 41, 20, 20, 1.0F));
  const double weight = static_cast<double>(plain.At(20, 20, 1));
  const Floats dest = Blurred(Look(6.0, 20.0), Light(41, 41, 20, 20, 5.0F));
  const double bright = (1.0 + 4.0 * 400.0) * weight;
  ASSERT_GT(bright, 1.0);
  const double luma = 0.299 * static_cast<double>(dest.At(20, 20, 0)) +
                      0.587 * static_cast<double>(dest.At(20, 20, 1)) +
                      0.114 * static_cast<double>(dest.At(20, 20, 2));
  EXPECT_NEAR(1.0 + (bright - 1.0) / 400.0, luma, 1e-5);
}

TEST(LibraryFloats, CountWhatIsNotFiniteAsNothing) {
  Floats clean = Noise(40, 30, 1);
  Floats broken = clean;
  const float bad[] = {std::numeric_limits<float>::quiet_NaN(),
                       std::numeric_limits<float>::infinity(),
                       -std::numeric_limits<float>::infinity()};
  for (int i = 0; i < 3; ++i) {
    clean.At(5 + i, 7, i) = 0.0F;
    broken.At(5 + i, 7, i) = bad[i];
  }
  const auto object = Make(Look(4.0, 20.0));
  const Floats expected = Blurred(object, clean);
  glimmerblur_report report;
  glimmerblur_report_init(&report);
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_get_report(object.get(), &report));
  EXPECT_EQ(0U, report.replaced);

  EXPECT_EQ(expected, Blurred(object, broken));
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_get_report(object.get(), &report));
  EXPECT_EQ(3U, report.replaced);
}

TEST(LibraryFloats, GoThroughBelowZeroAndAboveOneAsLinearly) {
  const Floats source = Noise(50, 35, 2, -3.0, 8.0);
  Floats scaled = source;
  for (float& sample : scaled.samples) {
    sample *= 0.25F;
  }
  Floats expected = Blurred(Look(5.0), source);
  for (float& sample : expected.samples) {
    sample *= 0.25F;
  }
  library_test::ExpectNear(expected, Blurred(Look(5.0), scaled), 2e-6);
}

TEST(LibraryFloats, AreBlackAroundAPictureWhoseEdgeIsZero) {
  glimmerblur_look look = Look(8.0);
  look.edge = GLIMMERBLUR_ZERO;
  Floats white(40, 40);
  std::fill(white.samples.begin(), white.samples.end(), 1.0F);
  const Floats dest = Blurred(look, white);
  for (int c = 0; c < 4; ++c) {
    EXPECT_NEAR(1.0, dest.At(20, 20, c), 1e-6);
    // Half a disc and half a row of it lie inside at a side; its row through the middle is 17 of
    // 201.
    EXPECT_NEAR(0.5 + 8.5 / 201.0, dest.At(0, 20, c), 5e-3);
    EXPECT_NEAR(dest.At(0, 20, c), dest.At(39, 20, c), 1e-6);
    EXPECT_NEAR(dest.At(0, 20, c), dest.At(20, 0, c), 1e-6);
  }
}

TEST(LibraryFloats, KeepAlphaWhereItIsNotToBeBlurred) {
  const Floats source = Noise(30, 20, 3);
  glimmerblur_look look = Look(4.0);
  look.blur_alpha = 0;
  const Floats dest = Blurred(look, source);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) {
      ASSERT_EQ(source.At(x, y, 3), dest.At(x, y, 3));
    }
  }
  EXPECT_NE(source.At(9, 9, 0), dest.At(9, 9, 0));
}

// Alpha's curve is that of luma: grey of that value, with alpha emphasised, has alpha as its luma.
TEST(LibraryFloats, EmphasiseAlphaWhereThatIsAskedFor) {
  Floats source = Noise(30, 20, 4);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) {
      for (int c = 0; c < 3; ++c) {
        source.At(x, y, c) = source.At(x, y, 3);
      }
    }
  }
  glimmerblur_look look = Look(4.0, 30.0);
  const Floats plain = Blurred(look, source);
  look.emphasis_alpha = 1;
  const Floats both = Blurred(look, source);
  for (int y = 0; y < 20; ++y) {
    for (int x = 0; x < 30; ++x) {
      const double luma = 0.299 * static_cast<double>(both.At(x, y, 0)) +
                          0.587 * static_cast<double>(both.At(x, y, 1)) +
                          0.114 * static_cast<double>(both.At(x, y, 2));
      ASSERT_NEAR(luma, both.At(x, y, 3), 1e-6);
    }
  }
  EXPECT_LT(plain.At(15, 10, 3) + 0.1F, both.At(15, 10, 3));
}

}  // namespace
