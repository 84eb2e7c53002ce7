#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <limits>

#include "fftlib/fftlib.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::MakeImage;
using lx_test::Samples;

Image White(int width, int height) {
  Image image = MakeImage(width, height, 4, 1);
  lx_test::Fill<std::uint16_t>(image, 65535);
  return image;
}

int MaskAt(const DefocusEngine& engine, int x, int y) {
  return static_cast<const std::uint8_t*>(engine.psfMask->data)[y * engine.psfMask->width + x];
}

TEST(ImagePsf, CutsADiscWithARampAndMovesItToTheMiddle) {
  DefocusEngine engine;

  engine.BuildImagePsf(White(32, 24).get(), 10, 8, 2, 4);

  EXPECT_EQ(7, engine.margin);
  EXPECT_EQ(255, MaskAt(engine, 16, 12));
  EXPECT_EQ(255, MaskAt(engine, 18, 12));
  EXPECT_EQ(191, MaskAt(engine, 19, 12));  // a quarter down the ramp, truncated
  EXPECT_EQ(63, MaskAt(engine, 16, 17));
  EXPECT_EQ(0, MaskAt(engine, 16, 18));
}

TEST(ImagePsf, BecomesAnImpulseWhereTheDiscShowsNothing) {
  const Image black = MakeImage(32, 24, 4, 1);
  lx_test::Fill<std::uint16_t>(black, 255);  // nothing in the upper byte
  DefocusEngine engine;

  engine.BuildImagePsf(black.get(), 10, 8, 2, 4);

  EXPECT_EQ(255, MaskAt(engine, 16, 12));
  EXPECT_EQ(0, MaskAt(engine, 15, 12));
}

TEST(ImagePsf, IsDefinedForAnyNumbers) {
  const float nan = std::numeric_limits<float>::quiet_NaN();
  const Image white = White(16, 16);
  for (const float radius : {nan, -99.F, 1e30F}) {
    DefocusEngine engine;
    engine.BuildImagePsf(white.get(), INT32_MIN, INT32_MAX, radius, 4);
    engine.BuildImagePsf(white.get(), 8, 8, 4, radius);
    engine.BuildImagePsf(white.get(), 8, 8, radius, radius);
  }
}

TEST(ImagePsf, RefusesFloatImagesAndNull) {
  DefocusEngine engine;
  engine.BuildImagePsf(nullptr, 1, 1, 1, 1);
  EXPECT_EQ(0, engine.GetStatus());
  const Image image = MakeImage(8, 8, 4, 3);
  lx_test::Fill<float>(image, 1);
  engine.BuildImagePsf(image.get(), 1, 1, 1, 1);
  EXPECT_EQ(lx::kStatusFloatImage, engine.GetStatus());
  EXPECT_EQ(nullptr, engine.psfMask);
}

}  // namespace
