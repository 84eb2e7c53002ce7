// SPDX-License-Identifier: BSD-3-Clause
// Sizes, margins and images that the mode of the transform library takes or refuses, seen in
// what an engine answers and in the grids that it asks for.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <cstring>
#include <string>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::FftRecorder;
using lx_test::Image;
using lx_test::MakeImage;
using lx_test::Samples;

// A mask of one full pixel right of and below the middle, which moves nothing.
Image ImpulseMask(int width, int height) {
  Image mask = MakeImage(width, height, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 0);
  Samples<std::uint8_t>(mask)[height / 2 * width + width / 2] = 255;
  return mask;
}

// "forward 32" of the PSF's plan, the side of the grid; 0 where none was made.
int PlannedSide(const FftRecorder& fft) {
  for (const std::string& call : fft.Log()) {
    if (call.starts_with("forward ")) {
      return std::stoi(call.substr(8));
    }
  }
  return 0;
}

TEST(EngineLimits, ForgetAnEarlierSourceWhereANewOneIsRefused) {
  const Image good = MakeImage(16, 12, 4, 1);
  lx_test::FillNoise(good, 3);
  const Image large = MakeImage(16, 13, 4, 1);
  const Image dest = MakeImage(16, 12, 4, 1);
  lx_test::Fill<std::uint16_t>(dest, 77);
  lx::ImageRec bare = *good;
  bare.data = nullptr;
  struct Case {
    const lx::ImageRec* refused;
    int status;
  };
  for (const Case& c : {Case{large.get(), lx::kStatusSourceSize},
                        Case{nullptr, lx::kStatusSourceSize}, Case{&bare, lx::kStatusSizeRange}}) {
    DefocusEngine engine;
    engine.LoadPsf(ImpulseMask(16, 12).get(), 2);
    ASSERT_TRUE(engine.SetSourceImage(good.get()));

    EXPECT_FALSE(engine.SetSourceImage(c.refused));
    EXPECT_EQ(c.status, engine.GetStatus());

    EXPECT_FALSE(engine.Convolve(dest.get(), 15));
    EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
    EXPECT_FALSE(engine.ConvolveChannels(dest.get(), 15));
    EXPECT_EQ(77, *std::max_element(Samples<std::uint16_t>(dest),
                                    Samples<std::uint16_t>(dest) + lx_test::SampleCount(dest)));
  }
}

TEST(EngineLimits, TakeAGridOfTwo) {
  FftRecorder fft;
  const Image source = MakeImage(2, 2, 4, 1);
  lx_test::FillNoise(source, 5);
  const Image dest = MakeImage(2, 2, 4, 1);
  DefocusEngine engine;

  ASSERT_TRUE(engine.LoadPsf(ImpulseMask(2, 2).get(), 0));
  EXPECT_EQ(2, PlannedSide(fft));
  ASSERT_TRUE(engine.SetSourceImage(source.get()));
  ASSERT_TRUE(engine.Convolve(dest.get(), 15));

  for (std::size_t i = 0; i < lx_test::SampleCount(source); ++i) {
    EXPECT_NEAR(Samples<std::uint16_t>(source)[i], Samples<std::uint16_t>(dest)[i], 1) << i;
  }
}

// The largest grid takes gigabytes. That it is asked for is enough: 8192 x 8192 doubles.
TEST(EngineLimits, TakeAGridOf8192AndNoLargerOne) {
  FftRecorder fft;
  const Image mask = MakeImage(8192, 1, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 1);
  DefocusEngine engine;
  fft.Clear();
  fft.RefuseAllocation(1);

  EXPECT_FALSE(engine.LoadPsf(mask.get(), 0));

  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_EQ(std::vector<std::string>{"allocate 536870912"}, fft.Log());
  fft.Clear();
  EXPECT_FALSE(engine.LoadPsf(mask.get(), 1));  // 8194
  EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus());
  EXPECT_EQ(0, fft.Count("allocate"));
}

// A frame of 28 with a margin of 1 stands in a grid of 32. Two pixels more of margin, which
// the smallest softness gives, are too much for that.
TEST(EngineLimits, SoftenFromATenthOfAPixelOn) {
  struct Case {
    float softness;
    int side;
  };
  for (const Case& c : {Case{0.0F, 32}, Case{0.05F, 32}, Case{0.1F, 32}, Case{0.11F, 64},
                        Case{0.5F, 64}, Case{0.99F, 64}}) {
    FftRecorder fft;
    DefocusEngine engine;
    engine.SetPsfSoftness(c.softness);

    engine.LoadPsf(ImpulseMask(28, 28).get(), 1);

    EXPECT_EQ(c.side, PlannedSide(fft)) << c.softness;
  }
}

TEST(EngineLimits, SpreadTheMaskBySoftnessBelowOnePixel) {
  const Image mask = ImpulseMask(28, 28);
  DefocusEngine engine;
  engine.SetPsfSoftness(0.9F);

  engine.LoadPsf(mask.get(), 1);

  EXPECT_GT(255, Samples<std::uint8_t>(mask)[14 * 28 + 14]);
  EXPECT_LT(0, Samples<std::uint8_t>(mask)[14 * 28 + 15]);
  EXPECT_LT(0, Samples<std::uint8_t>(mask)[15 * 28 + 14]);
}

// Every outline is drawn with radii of 1 at least, but the margin is that of the radius as it
// arrives: 1 for a radius of 0, and none for one far below.
TEST(EngineLimits, TakeTheMarginOfARadiusBeforeItIsRaised) {
  struct Case {
    int frame;
    float radius;
    int side;
  };
  for (const Case& c :
       {Case{30, 0.0F, 32}, Case{30, 0.25F, 64}, Case{28, 1.0F, 32}, Case{31, 0.0F, 64},
        Case{32, -1.0F, 32}, Case{32, -0.5F, 64}, Case{32, -40.0F, 32}}) {
    for (const int shape : {1, 2, 3, 4}) {
      FftRecorder fft;
      DefocusEngine engine;

      engine.BuildShapePsf(c.frame, c.frame, shape, c.radius, c.radius, 0, 5);

      EXPECT_EQ(c.side, PlannedSide(fft)) << c.frame << ' ' << c.radius << ' ' << shape;
    }
  }
}

}  // namespace
