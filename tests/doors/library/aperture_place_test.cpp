// SPDX-License-Identifier: BSD-3-Clause
// Where apertures stand: exactly on their pixel, or where the host module has them.
#include <gtest/gtest.h>

#include <cmath>
#include <utility>

#include "tests/doors/library/library_frames.h"

namespace {

using library_test::Blurred;
using library_test::Floats;
using library_test::Look;
using library_test::Make;
using library_test::Pixels;

Floats Point(int width, int height, int x, int y) {
  Floats pixels(width, height, 1);
  pixels.At(x, y, 0) = 1.0F;
  return pixels;
}

// Where what a point became has its middle, from that point.
std::pair<double, double> MiddleOf(const Floats& image, int x, int y) {
  double sum = 0.0;
  double sumX = 0.0;
  double sumY = 0.0;
  for (int row = 0; row < image.height; ++row) {
    for (int column = 0; column < image.width; ++column) {
      const double weight = static_cast<double>(image.At(column, row, 0));
      sum += weight;
      sumX += weight * (column - x);
      sumY += weight * (row - y);
    }
  }
  return {sumX / sum, sumY / sum};
}

struct Side {
  int width;
  int height;
};

class CentredAperture : public testing::TestWithParam<Side> {};

TEST_P(CentredAperture, LeavesAPictureWhereItWas) {
  const auto [width, height] = GetParam();
  for (const int shape : {GLIMMERBLUR_CIRCLE, GLIMMERBLUR_ELLIPSE, GLIMMERBLUR_POLYGON}) {
    glimmerblur_look look = Look(7.3);
    look.shape = shape;
    look.radius_y = 4.0;
    look.sides = 6;
    const auto [x, y] = MiddleOf(Blurred(look, Point(width, height, 19, 21)), 19, 21);
    EXPECT_NEAR(0.0, x, 2e-3) << shape;
    EXPECT_NEAR(0.0, y, 2e-3) << shape;
  }
}

// By half a pixel along even sides, and a whole one along odd ones, towards the left and, as the
// rows are mirrored, towards the bottom.
TEST_P(CentredAperture, StandsInTheHostModuleWhereThatHasIt) {
  const auto [width, height] = GetParam();
  glimmerblur_look look = Look(7.3);
  look.centred = 0;
  const auto [x, y] = MiddleOf(Blurred(look, Point(width, height, 19, 21)), 19, 21);
  EXPECT_NEAR(width % 2 == 0 ? -0.5 : -1.0, x, 2e-3);
  EXPECT_NEAR(height % 2 == 0 ? 0.5 : 1.0, y, 2e-3);
}

INSTANTIATE_TEST_SUITE_P(Sides, CentredAperture,
                         testing::Values(Side{40, 44}, Side{41, 44}, Side{40, 43}, Side{41, 43}));

TEST(CentredAperture, IsTheSameFromAllSides) {
  const Floats disc = Blurred(Look(6.4), Point(41, 41, 20, 20));
  for (int y = 0; y < 41; ++y) {
    for (int x = 0; x < 41; ++x) {
      // An outline's vertices are rounded to floats, and weights to 1 / 255.
      ASSERT_NEAR(disc.At(x, y, 0), disc.At(40 - x, 40 - y, 0), 1.1 / 255 / 128);
    }
  }
}

TEST(CentredAperture, LeavesFramesAsTheyAreUpToHalfAPixel) {
  const Floats source = library_test::Noise(24, 17, 5);
  for (const double radius : {0.0, 0.01, 0.3, 0.5}) {
    library_test::ExpectNear(source, Blurred(Look(radius), source), 1e-6);
  }
  EXPECT_NE(source.At(5, 5, 0), Blurred(Look(0.8), source).At(5, 5, 0));
}

TEST(CentredAperture, TurnsAnticlockwise) {
  glimmerblur_look look = Look(12.0);
  look.shape = GLIMMERBLUR_ELLIPSE;
  look.radius_y = 2.0;
  look.rotation = 45.0;
  const Floats image = Blurred(look, Point(41, 41, 20, 20));
  EXPECT_GT(image.At(26, 14, 0), 0.005F);  // right and up
  EXPECT_GT(image.At(14, 26, 0), 0.005F);
  EXPECT_LT(image.At(26, 26, 0), 1e-6F);
  EXPECT_LT(image.At(14, 14, 0), 1e-6F);
}

TEST(CentredAperture, IsNarrowerWherePixelsAreWide) {
  glimmerblur_look look = Look(10.0);
  look.pixel_aspect = 2.0;
  const Floats image = Blurred(look, Point(41, 41, 20, 20));
  EXPECT_GT(image.At(20, 11, 0), 0.0F);
  EXPECT_GT(image.At(24, 20, 0), 0.0F);
  EXPECT_LT(image.At(26, 20, 0), 1e-6F);
}

// Larger than the frame, and not cut by it: the weights that stay inside are those of a disc.
TEST(CentredAperture, MayBeLargerThanTheFrame) {
  glimmerblur_look look = Look(40.0);
  look.edge = GLIMMERBLUR_ZERO;
  const Floats image = Blurred(look, Point(12, 9, 6, 4));
  for (const float sample : image.samples) {
    EXPECT_NEAR(1.0 / (3.14159 * 40.0 * 40.0), sample, 2e-6);
  }
}

// A letter L of four pixels, one of them half as bright.
Pixels<std::uint8_t> Letter() {
  Pixels<std::uint8_t> letter(3, 3, 1);
  letter.At(0, 0, 0) = 200;
  letter.At(0, 1, 0) = 200;
  letter.At(0, 2, 0) = 200;
  letter.At(2, 2, 0) = 100;
  return letter;
}

TEST(PictureAperture, OpensAPointAsThePictureLooks) {
  glimmerblur_look look = Look(0.0);
  look.shape = GLIMMERBLUR_PICTURE;
  const auto object = Make(look);
  Pixels<std::uint8_t> letter = Letter();
  const glimmerblur_frame aperture = letter.Frame();
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &aperture, 1.5, 1.5, -1, -1));
  const Floats image = Blurred(object, Point(20, 16, 10, 8));
  for (int y = 0; y < 3; ++y) {
    for (int x = 0; x < 3; ++x) {
      EXPECT_NEAR(letter.At(x, y, 0) / 700.0, image.At(9 + x, 7 + y, 0), 1e-6) << x << ' ' << y;
    }
  }
}

TEST(PictureAperture, IsCutOutAsADiscAroundItsCentre) {
  Pixels<std::uint8_t> noise(31, 21, 1);
  for (int i = 0; i < 31 * 21; ++i) {
    noise.samples[static_cast<std::size_t>(i)] = static_cast<std::uint8_t>(1 + i * 7 % 255);
  }
  glimmerblur_look look = Look(0.0);
  look.shape = GLIMMERBLUR_PICTURE;
  const auto object = Make(look);
  const glimmerblur_frame aperture = noise.Frame();
  // Inside the pixel (12, 8).
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &aperture, 12.9, 8.1, 2, 4));
  const Floats image = Blurred(object, Point(40, 40, 20, 20));
  double sum = 0.0;
  Floats expected(40, 40, 1);
  for (int y = -5; y <= 5; ++y) {
    for (int x = -5; x <= 5; ++x) {
      const double weight = std::clamp(1.0 - (std::hypot(x, y) - 2.0) / 2.0, 0.0, 1.0);
      const double value = std::floor(noise.At(12 + x, 8 + y, 0) * weight);
      expected.At(20 + x, 20 + y, 0) = static_cast<float>(value);
      sum += value;
    }
  }
  for (float& sample : expected.samples) {
    sample = static_cast<float>(static_cast<double>(sample) / sum);
  }
  library_test::ExpectNear(expected, image, 1e-6);
}

TEST(PictureAperture, HasItsMiddleAtHalfOfItsSides) {
  for (const auto& [width, height] : {std::pair{9, 7}, {8, 6}, {9, 6}}) {
    Floats picture = library_test::Noise(width, height, 10, 0.1, 1.0, 1);
    glimmerblur_look look = Look(0.0);
    look.shape = GLIMMERBLUR_PICTURE;
    const auto whole = Make(look);
    const auto disc = Make(look);
    const glimmerblur_frame aperture = picture.Frame();
    ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(whole.get(), &aperture, 0, 0, -1, -1));
    ASSERT_EQ(GLIMMERBLUR_OK,
              glimmerblur_set_aperture(disc.get(), &aperture, width / 2.0, height / 2.0, 50, 60));
    const Floats source = library_test::Noise(30, 30, 11);
    EXPECT_EQ(Blurred(whole, source), Blurred(disc, source)) << width << ' ' << height;
  }
}

TEST(PictureAperture, IsAPointWhereItIsBlack) {
  glimmerblur_look look = Look(0.0);
  look.shape = GLIMMERBLUR_PICTURE;
  const auto object = Make(look);
  Floats black(8, 8, 1);
  const glimmerblur_frame aperture = black.Frame();
  ASSERT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object.get(), &aperture, 4, 4, -1, -1));
  const Floats source = library_test::Noise(15, 12, 6);
  library_test::ExpectNear(source, Blurred(object, source), 1e-6);
}

}  // namespace
