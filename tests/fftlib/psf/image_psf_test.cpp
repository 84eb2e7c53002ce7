// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <limits>
#include <random>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/convolution_model.h"
#include "tests/support/engine_inside.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;
using lx_test::Samples;

constexpr float kNan = std::numeric_limits<float>::quiet_NaN();

Image White(int width, int height) {
  Image image = MakeImage(width, height, 4, 1);
  lx_test::Fill<std::uint16_t>(image, 65535);
  return image;
}

Image Noise(int width, int height) {
  Image image = MakeImage(width, height, 4, 1);
  lx_test::FillNoise(image, 5);
  return image;
}

int MaskAt(const DefocusEngine& engine, int x, int y) {
  return static_cast<const std::uint8_t*>(
      Inside(engine).psfMask()->data)[y * Inside(engine).psfMask()->width + x];
}

std::vector<std::uint8_t> Mask(const DefocusEngine& engine) {
  const auto* pixels = static_cast<const std::uint8_t*>(Inside(engine).psfMask()->data);
  return {pixels, pixels + Inside(engine).psfMask()->width * Inside(engine).psfMask()->height};
}

std::vector<std::uint8_t> ImpulseMask(int width, int height) {
  std::vector<std::uint8_t> mask(static_cast<std::size_t>(width) * height, 0);
  mask[static_cast<std::size_t>(height / 2) * width + width / 2] = 255;
  return mask;
}

// The mask by its definition.
std::vector<std::uint8_t> ModelMask(const Image& image, int centreX, int centreY, double inner,
                                    double falloff) {
  const int w = image->width;
  const int h = image->height;
  std::vector<std::uint8_t> mask(static_cast<std::size_t>(w) * h, 0);
  for (int ty = 0; ty < h; ++ty) {
    for (int tx = 0; tx < w; ++tx) {
      const int dx = tx - w / 2;
      const int dy = ty - h / 2;
      const int x = centreX + dx;
      const int y = centreY + dy;
      if (x < 0 || y < 0 || x >= w || y >= h) {
        continue;
      }
      const double distance = std::sqrt(static_cast<double>(dx * dx + dy * dy));
      const double weight = 1.0 - std::clamp((distance - inner) / falloff, 0.0, 1.0);
      const int value = Samples<std::uint16_t>(image)[(y * w + x) * 4] >> 8;
      mask[static_cast<std::size_t>(ty) * w + tx] = static_cast<std::uint8_t>(value * weight);
    }
  }
  return mask;
}

TEST(ImagePsf, CutsADiscWithARampAndMovesItToTheMiddle) {
  DefocusEngine engine;

  engine.BuildImagePsf(White(32, 24).get(), 10, 8, 2, 4);

  EXPECT_EQ(7, Inside(engine).margin());
  EXPECT_EQ(255, MaskAt(engine, 16, 12));
  EXPECT_EQ(255, MaskAt(engine, 18, 12));
  EXPECT_EQ(191, MaskAt(engine, 19, 12));  // a quarter down the ramp, truncated
  EXPECT_EQ(63, MaskAt(engine, 16, 17));
  EXPECT_EQ(0, MaskAt(engine, 16, 18));
}

TEST(ImagePsf, IsTheDiscOfItsDefinitionAtAnyCentreAndSize) {
  const struct {
    int width, height, x, y;
    float inner, falloff;
  } cases[] = {{32, 24, 10, 8, 3, 5},
               {33, 25, 30, 20, 6.5F, 2.25F},
               {32, 25, -3, 12, 5, 5},
               {31, 24, 40, 30, 9, 8},
               {17, 40, 0, 0, 0, 12}};
  for (const auto& c : cases) {
    const Image image = Noise(c.width, c.height);
    DefocusEngine engine;
    engine.BuildImagePsf(image.get(), c.x, c.y, c.inner, c.falloff);
    EXPECT_EQ(ModelMask(image, c.x, c.y, c.inner, c.falloff), Mask(engine))
        << c.width << "x" << c.height;
  }
}

TEST(ImagePsf, HasARampOfAtLeastOnePixel) {
  for (const float falloff : {0.F, 0.5F, -3.F, 1.F}) {
    DefocusEngine engine;
    engine.BuildImagePsf(White(32, 24).get(), 16, 12, 3, falloff);
    EXPECT_EQ(5, Inside(engine).margin()) << falloff;  // ceil(3 + 1) + 1
    EXPECT_EQ(255, MaskAt(engine, 19, 12));
    // sqrt(10) lies 0.1623 into the ramp: 255 * 0.8377.
    EXPECT_EQ(213, MaskAt(engine, 19, 13));
    EXPECT_EQ(0, MaskAt(engine, 20, 12));
  }
}

TEST(ImagePsf, HasAMarginOfTheRoundedUpRadiusAndOne) {
  DefocusEngine engine;
  engine.BuildImagePsf(White(64, 64).get(), 32, 32, 4.25F, 2.5F);
  EXPECT_EQ(8, Inside(engine).margin());
  engine.BuildImagePsf(White(64, 64).get(), 32, 32, 4, 2);
  EXPECT_EQ(7, Inside(engine).margin());
}

TEST(ImagePsf, OfNoInnerRadiusAndARampOfOneIsASinglePixel) {
  DefocusEngine engine;
  engine.BuildImagePsf(White(32, 24).get(), 5, 5, 0, 1);
  EXPECT_EQ(ImpulseMask(32, 24), Mask(engine));
}

TEST(ImagePsf, TakesWhatTheShiftBringsInFromACentreOutside) {
  const Image image = White(32, 24);
  DefocusEngine engine;
  engine.BuildImagePsf(image.get(), -2, 12, 6, 1);
  // Column 0 of the picture lands two beside the middle; left of it there is nothing.
  EXPECT_EQ(0, MaskAt(engine, 17, 12));
  EXPECT_EQ(255, MaskAt(engine, 18, 12));
  EXPECT_EQ(255, MaskAt(engine, 22, 12));
  EXPECT_EQ(0, MaskAt(engine, 23, 12));
}

TEST(ImagePsf, ReadsTheTopByteOfTheFirstChannel) {
  const auto middle = [](const Image& image) {
    DefocusEngine engine;
    engine.BuildImagePsf(image.get(), 8, 8, 2, 1);
    return MaskAt(engine, 8, 8);
  };
  const Image narrow = MakeImage(16, 16, 3, 0);
  lx_test::Fill<std::uint8_t>(narrow, 9);
  Samples<std::uint8_t>(narrow)[(8 * 16 + 8) * 3] = 200;
  EXPECT_EQ(200, middle(narrow));
  const Image wide = MakeImage(16, 16, 4, 1);
  lx_test::Fill<std::uint16_t>(wide, 0xFFFF);
  Samples<std::uint16_t>(wide)[(8 * 16 + 8) * 4] = 0x7CFF;
  EXPECT_EQ(0x7C, middle(wide));
  const Image widest = MakeImage(16, 16, 4, 2);
  lx_test::Fill<std::uint32_t>(widest, 0xFFFFFFFF);
  Samples<std::uint32_t>(widest)[(8 * 16 + 8) * 4] = 0x5BFFFFFF;
  EXPECT_EQ(0x5B, middle(widest));
}

TEST(ImagePsf, BecomesAnImpulseWhereTheDiscIsBlack) {
  const Image image = White(32, 24);
  // The disc around (8, 8) and what it reaches is black, the rest is not seen.
  for (int y = 0; y < 24; ++y) {
    for (int x = 0; x < 20; ++x) {
      std::fill_n(Samples<std::uint16_t>(image) + (y * 32 + x) * 4, 4, std::uint16_t{0});
    }
  }
  DefocusEngine engine;

  engine.BuildImagePsf(image.get(), 8, 8, 2, 4);

  EXPECT_EQ(ImpulseMask(32, 24), Mask(engine));
}

TEST(ImagePsf, BecomesAnImpulseWhereNoSampleReachesAnEighthBit) {
  const Image image = MakeImage(32, 24, 4, 1);
  lx_test::Fill<std::uint16_t>(image, 255);
  DefocusEngine engine;

  engine.BuildImagePsf(image.get(), 10, 8, 2, 4);

  EXPECT_EQ(ImpulseMask(32, 24), Mask(engine));
}

// A disc that covers the whole mask is as flat as a black one; a pixel short of that it is a
// box with a corner missing.
TEST(ImagePsf, BecomesAnImpulseWhereTheMaskIsFilledEvenly) {
  const Image image = White(32, 24);
  DefocusEngine filled;
  filled.BuildImagePsf(image.get(), 16, 12, 20, 1);  // the far corner is 20 away
  EXPECT_EQ(ImpulseMask(32, 24), Mask(filled));
  DefocusEngine nearly;
  nearly.BuildImagePsf(image.get(), 16, 12, 19, 1);
  EXPECT_EQ(0, MaskAt(nearly, 0, 0));
  EXPECT_EQ(255, MaskAt(nearly, 1, 1));
}

TEST(ImagePsf, LoadsThePsfOnceWhateverItShows) {
  for (const bool black : {false, true}) {
    const lx_test::FftRecorder fft;
    DefocusEngine engine;
    const Image image = black ? MakeImage(32, 24, 4, 1) : White(32, 24);
    if (black) {
      lx_test::Fill<std::uint16_t>(image, 0);
    }
    engine.BuildImagePsf(image.get(), 16, 12, 3, 2);
    EXPECT_EQ(1, fft.Count("execute")) << black;
    EXPECT_EQ(0, engine.GetStatus());
  }
}

// Frames of an even size. The grid keeps what the load before left at its corner, so only the
// first frame is the source alone; from then on the impulse shares with its own ghosts.
TEST(ImagePsf, OfAnImpulsePassesTheFrameThroughAndThenSharesWithWhatEarlierLoadsLeft) {
  constexpr int kWidth = 24;
  constexpr int kHeight = 20;
  const Image black = MakeImage(kWidth, kHeight, 4, 1);
  lx_test::Fill<std::uint16_t>(black, 0);
  const Image source = Noise(kWidth, kHeight);
  const Image dest = MakeImage(kWidth, kHeight, 4, 1);
  DefocusEngine engine;
  lx_test::PsfModel model(32, kWidth, kHeight);
  const double ownWeight[] = {1.0, 1.0 / 2, 2.0 / 3};
  for (int frame = 0; frame < 3; ++frame) {
    engine.BuildImagePsf(black.get(), 4, 4, 1, 1);
    ASSERT_TRUE(engine.SetSourceImage(source.get()));
    ASSERT_TRUE(engine.Convolve(dest.get(), 15));

    // The engine's scale of a byte is 1 / 255 in single precision.
    EXPECT_NEAR(ownWeight[frame], Inside(engine).psfSpatial()[0], 1e-7) << frame;
    model.Load(ImpulseMask(kWidth, kHeight));
    for (int c = 0; c < 4; ++c) {
      const std::vector<double> expected = lx_test::ConvolveChannel(source, c, model.Shifted());
      for (std::size_t i = 0; i < expected.size(); ++i) {
        ASSERT_NEAR(expected[i], Samples<std::uint16_t>(dest)[i * 4 + c], 1) << frame << " " << i;
      }
    }
  }
}

TEST(ImagePsf, WantsFramesOfItsOwnSizeAfterwards) {
  DefocusEngine engine;
  engine.BuildImagePsf(White(32, 24).get(), 16, 12, 3, 2);
  const Image other = Noise(24, 32);
  EXPECT_FALSE(engine.SetSourceImage(other.get()));
  EXPECT_EQ(3, engine.GetStatus());
  const Image same = Noise(32, 24);
  EXPECT_TRUE(engine.SetSourceImage(same.get()));
}

TEST(ImagePsf, LeavesEverythingAsItWasForAFloatImage) {
  DefocusEngine engine;
  engine.BuildImagePsf(White(16, 16).get(), 8, 8, 3, 2);
  const std::vector<std::uint8_t> before = Mask(engine);
  const lx_test::FftRecorder fft;
  const Image image = MakeImage(8, 8, 4, 3);
  lx_test::Fill<float>(image, 1);

  engine.BuildImagePsf(image.get(), 1, 1, 1, 1);

  EXPECT_EQ(lx::kStatusFloatImage, engine.GetStatus());
  EXPECT_EQ(before, Mask(engine));
  EXPECT_TRUE(fft.Log().empty());
}

TEST(ImagePsf, LeavesTheStatusAloneForNoImage) {
  DefocusEngine engine;
  engine.BuildImagePsf(nullptr, 1, 1, 1, 1);
  EXPECT_EQ(0, engine.GetStatus());
  EXPECT_EQ(nullptr, Inside(engine).psfMask());
}

TEST(ImagePsf, KeepsTheEarlierPsfWhereItsMaskCannotBeMade) {
  const Image first = White(16, 16);
  const Image second = White(32, 16);
  DefocusEngine engine;
  engine.BuildImagePsf(first.get(), 8, 8, 3, 2);
  const double* const spatial = Inside(engine).psfSpatial();
  const lx::FftGrids::Complex* const spectrum = Inside(engine).psfSpectrum();
  lx_test::HeapFaults heap;
  heap.RefuseAll();

  engine.BuildImagePsf(second.get(), 8, 8, 3, 2);

  EXPECT_EQ(2, engine.GetStatus());
  EXPECT_EQ(spatial, Inside(engine).psfSpatial());
  EXPECT_EQ(spectrum, Inside(engine).psfSpectrum());
  EXPECT_EQ(16, Inside(engine).frameWidth());
}

TEST(ImagePsf, IsDefinedForAnyNumbers) {
  const Image white = White(16, 16);
  DefocusEngine fresh;
  fresh.BuildImagePsf(white.get(), 3, 8, 3, 2);
  for (const float radius : {kNan, -99.F, 1e30F, std::numeric_limits<float>::infinity()}) {
    DefocusEngine engine;
    engine.BuildImagePsf(white.get(), INT32_MIN, INT32_MAX, radius, 4);
    engine.BuildImagePsf(white.get(), INT32_MAX, INT32_MIN, 4, radius);
    engine.BuildImagePsf(white.get(), 8, 8, 4, radius);
    engine.BuildImagePsf(white.get(), 8, 8, radius, radius);

    // And none of it stays.
    engine.BuildImagePsf(white.get(), 3, 8, 3, 2);
    EXPECT_EQ(lx::kStatusOk, engine.GetStatus()) << radius;
    EXPECT_EQ(Mask(fresh), Mask(engine)) << radius;
  }
}

// A weight that is not a number stores 0, so nothing is to be seen.
TEST(ImagePsf, OfARadiusThatIsNoNumberIsAnImpulse) {
  DefocusEngine engine;
  engine.BuildImagePsf(White(16, 16).get(), 8, 8, kNan, 2);
  EXPECT_EQ(ImpulseMask(16, 16), Mask(engine));
}

}  // namespace
