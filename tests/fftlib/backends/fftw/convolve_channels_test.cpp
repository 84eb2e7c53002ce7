// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstring>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/convolution_model.h"
#include "tests/support/engine_inside.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;
using lx_test::Samples;

constexpr int kSide = 16;

// An engine whose PSF is a unit impulse: what comes out is what went in.
class PlainRun : public testing::Test {
 protected:
  PlainRun() {
    const Image mask = MakeImage(kSide, kSide, 1, 0);
    lx_test::Fill<std::uint8_t>(mask, 0);
    Samples<std::uint8_t>(mask)[8 * kSide + 8] = 255;
    engine.LoadPsf(mask.get(), 4);
  }

  template <class Sample>
  Sample One(std::uint32_t type, Sample value, int channel = 0) {
    const Image source = MakeImage(kSide, kSide, 4, type);
    lx_test::Fill<Sample>(source, value);
    const Image dest = MakeImage(kSide, kSide, 4, type);
    lx_test::Fill<Sample>(dest, Sample{});
    EXPECT_TRUE(engine.SetSourceImage(source.get()));
    EXPECT_TRUE(engine.ConvolveChannels(dest.get(), 1U << channel));
    return Samples<Sample>(dest)[channel];
  }

  DefocusEngine engine;
};

TEST_F(PlainRun, TruncatesRawNumbers) {
  // Rounding noise of the transforms may fall just below a whole number, which truncates.
  EXPECT_NEAR(200, One<std::uint8_t>(0, 200), 1);
  EXPECT_NEAR(40000, One<std::uint16_t>(1, 40000), 1);
  EXPECT_NEAR(3e9, One<std::uint32_t>(2, 3000000000U), 1e-6 * 3e9);
}

TEST_F(PlainRun, LeavesFloatsUnclamped) {
  EXPECT_NEAR(-7.25F, One<float>(3, -7.25F), 1e-5);
  EXPECT_NEAR(1e6F, One<float>(3, 1e6F), 1);
}

TEST_F(PlainRun, WritesTheChannelsOfTheMaskOnly) {
  const Image source = MakeImage(kSide, kSide, 5, 1);
  lx_test::FillNoise(source, 1);
  const Image dest = MakeImage(kSide, kSide, 5, 1);
  lx_test::Fill<std::uint16_t>(dest, 9);
  engine.SetSourceImage(source.get());

  EXPECT_TRUE(engine.ConvolveChannels(dest.get(), 0x12));  // 1 and 4

  for (int c = 0; c < 5; ++c) {
    if (c == 1 || c == 4) {
      EXPECT_NEAR(Samples<std::uint16_t>(source)[c], Samples<std::uint16_t>(dest)[c], 1) << c;
    } else {
      EXPECT_EQ(9, Samples<std::uint16_t>(dest)[c]) << c;
    }
  }
}

TEST_F(PlainRun, ChecksPsfAndDestinationOnly) {
  const Image source = MakeImage(kSide, kSide, 1, 1);
  lx_test::Fill<std::uint16_t>(source, 5);
  const Image small = MakeImage(4, 4, 1, 1);

  EXPECT_FALSE(DefocusEngine().ConvolveChannels(source.get(), 1));
  engine.SetSourceImage(source.get());
  EXPECT_FALSE(engine.ConvolveChannels(small.get(), 1));
  EXPECT_EQ(lx::kStatusDestination, engine.GetStatus());
  EXPECT_TRUE(engine.ConvolveChannels(source.get(), 0));
}

TEST_F(PlainRun, GoesThroughGammaAndBack) {
  engine.SetGamma(2.2F);

  EXPECT_NEAR(40000, One<std::uint16_t>(1, 40000), 1);
  EXPECT_NEAR(100, One<std::uint8_t>(0, 100), 1);
  EXPECT_NEAR(0.25F, One<float>(3, 0.25F), 1e-6);
}

TEST_F(PlainRun, AppliesOffsetAndGainWithGammaOnly) {
  engine.SetOutputGain(2);
  engine.SetOutputOffset(0.1F);
  EXPECT_NEAR(10000, One<std::uint16_t>(1, 10000), 1);

  engine.SetGamma(2);
  EXPECT_NEAR((10000 / 65535.0 + 0.1) * 2 * 65535, One<std::uint16_t>(1, 10000), 1);
  EXPECT_EQ(65535, One<std::uint16_t>(1, 60000));
  EXPECT_NEAR((3.0F + 0.1F) * 2, One<float>(3, 3.0F), 1e-5);
}

TEST_F(PlainRun, LeavesGammaOutOfAlphaUnlessItIsEmphasised) {
  engine.SetGamma(2);
  engine.SetOutputGain(2);

  EXPECT_NEAR(10000, One<std::uint16_t>(1, 10000, 3), 1);
  engine.SetEmphasisAlpha(true);
  EXPECT_NEAR(20000, One<std::uint16_t>(1, 10000, 3), 1);
}

TEST_F(PlainRun, StoresTheLimitOf32BitsAsZero) {
  engine.SetGamma(2);
  engine.SetOutputGain(5);

  EXPECT_EQ(0U, One<std::uint32_t>(2, 4294967295U));
}

TEST(ConvolveChannels, MatchesADirectSum) {
  const Image mask = MakeImage(20, 14, 1, 0);
  std::vector<std::uint8_t> bytes(20 * 14, 0);
  for (int i = 0; i < 12; ++i) {
    bytes[static_cast<std::size_t>(6 + i / 4) * 20 + 9 + i % 4] =
        static_cast<std::uint8_t>(20 * i + 7);
  }
  std::copy(bytes.begin(), bytes.end(), Samples<std::uint8_t>(mask));
  DefocusEngine engine;
  engine.LoadPsf(mask.get(), 5);
  const Image source = MakeImage(20, 14, 2, 1);
  lx_test::FillNoise(source, 4);
  const Image dest = MakeImage(20, 14, 2, 1);
  engine.SetSourceImage(source.get());

  ASSERT_TRUE(engine.ConvolveChannels(dest.get(), 3));

  lx_test::PsfModel psf(32, 20, 14);
  psf.Load(bytes);
  for (int c = 0; c < 2; ++c) {
    const auto expected = lx_test::ConvolveChannel(source, c, psf.Shifted());
    for (std::size_t i = 0; i < expected.size(); ++i) {
      ASSERT_NEAR(expected[i], Samples<std::uint16_t>(dest)[i * 2 + c], 1.0) << i;
    }
  }
}

TEST(ConvolveChannels, LeavesAResidueInMarginsOfZero) {
  const Image mask = MakeImage(kSide, kSide, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 0);
  Samples<std::uint8_t>(mask)[8 * kSide + 6] = 255;  // moves by two columns
  DefocusEngine engine;
  engine.SetEdgeMode(lx::kEdgeZero);
  engine.LoadPsf(mask.get(), 4);
  const Image source = MakeImage(kSide, kSide, 2, 1);
  lx_test::Fill<std::uint16_t>(source, 40000);
  const Image dest = MakeImage(kSide, kSide, 2, 1);
  engine.SetSourceImage(source.get());

  engine.ConvolveChannels(dest.get(), 3);

  // The last columns come from the right margin: zero in the first channel. The first
  // channel's result, moved into the left margin and scaled by the grid, wraps for the
  // second one to nothing here, but the grid's margin is no longer clear.
  const auto* samples = Samples<std::uint16_t>(dest);
  EXPECT_LE(samples[(kSide - 1) * 2], 1);
  const double* margin =
      Inside(engine).workSpatial() + Inside(engine).offsetY() * Inside(engine).paddedWidth();
  EXPECT_GT(*std::max_element(margin, margin + Inside(engine).offsetX()), 1.0);
}

}  // namespace
