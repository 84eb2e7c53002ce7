// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstdint>

#include "fftlib/fftlib.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::MakeImage;
using lx_test::Samples;

struct Colour {
  int red;
  int green;
  int blue;
};

class ColourCut : public testing::TestWithParam<int> {};  // of so many channels

// A column of a colour and one of white in turn, which the PSF mixes half and half. The
// emphasis lifts the luma of the mixture above the mean, so that colours leave 0..1. What is
// expected was computed by hand: luma by the curve of 20, (1 / ((1 - Y) b + a) - a) / b with
// a = 0.05 and b = 19.95, its mean and back, Cr and Cb as plain means, then the way back to
// colours. Red gives 1.34801, 0.84663 and 0.85511, magenta 1.29102, 0.78986 and 1.29695.
TEST_P(ColourCut, TakesEachColourToItsLimitAndLeavesTheOthers) {
  constexpr int kSide = 16;
  const int channels = GetParam();
  struct Case {
    Colour source;
    Colour mixed;
  };
  for (const Case& c :
       {Case{{65535, 0, 0}, {65535, 55484, 56040}}, Case{{0, 0, 65535}, {61636, 61522, 65535}},
        Case{{65535, 0, 65535}, {65535, 51764, 65535}}}) {
    const Image mask = MakeImage(kSide, kSide, 1, 0);
    lx_test::Fill<std::uint8_t>(mask, 0);
    Samples<std::uint8_t>(mask)[8 * kSide + 7] = 255;
    Samples<std::uint8_t>(mask)[8 * kSide + 8] = 255;
    DefocusEngine engine;
    ASSERT_TRUE(engine.LoadPsf(mask.get(), 4));
    engine.SetEmphasis(20.0F);
    const Image source = MakeImage(kSide, kSide, static_cast<std::uint32_t>(channels), 1);
    lx_test::Fill<std::uint16_t>(source, 65535);
    for (int i = 0; i < kSide * kSide; i += 2) {
      std::uint16_t* pixel = Samples<std::uint16_t>(source) + i * channels;
      pixel[0] = static_cast<std::uint16_t>(c.source.red);
      pixel[1] = static_cast<std::uint16_t>(c.source.green);
      pixel[2] = static_cast<std::uint16_t>(c.source.blue);
    }
    const Image dest = MakeImage(kSide, kSide, static_cast<std::uint32_t>(channels), 1);
    ASSERT_TRUE(engine.SetSourceImage(source.get()));

    ASSERT_TRUE(engine.Convolve(dest.get(), 15));

    for (int x = 1; x < kSide - 1; ++x) {
      const std::uint16_t* pixel = Samples<std::uint16_t>(dest) + (8 * kSide + x) * channels;
      EXPECT_NEAR(c.mixed.red, pixel[0], 1) << x;
      EXPECT_NEAR(c.mixed.green, pixel[1], 1) << x;
      EXPECT_NEAR(c.mixed.blue, pixel[2], 1) << x;
    }
  }
}

// Rows of four channels are stored by vector code.
INSTANTIATE_TEST_SUITE_P(Channels, ColourCut, testing::Values(3, 4));

}  // namespace
