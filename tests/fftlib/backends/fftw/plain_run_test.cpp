// SPDX-License-Identifier: BSD-3-Clause
// The run without colour transform, by FFTW: what it makes of numbers between two samples, and
// of arrays that a measured plan has overwritten.
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::MakeImage;
using lx_test::Samples;

constexpr int kSide = 16;

// Samples of value and value + 1 in turn, whose PSF is two pixels of 1 to 3: every number of
// the result is value + 0.25 or value + 0.75.
template <class Sample>
std::vector<Sample> QuartersOf(std::uint32_t type, Sample value) {
  const Image mask = MakeImage(kSide, kSide, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 0);
  Samples<std::uint8_t>(mask)[8 * kSide + 7] = 51;
  Samples<std::uint8_t>(mask)[8 * kSide + 8] = 153;
  DefocusEngine engine;
  EXPECT_TRUE(engine.LoadPsf(mask.get(), 4));
  const Image source = MakeImage(kSide, kSide, 1, type);
  for (int i = 0; i < kSide * kSide; ++i) {
    Samples<Sample>(source)[i] = static_cast<Sample>(value + static_cast<Sample>(i % 2));
  }
  const Image dest = MakeImage(kSide, kSide, 1, type);
  EXPECT_TRUE(engine.SetSourceImage(source.get()));
  EXPECT_TRUE(engine.ConvolveChannels(dest.get(), 1));
  std::vector<Sample> inside;  // without the edge columns, which are repeated
  for (int y = 0; y < kSide; ++y) {
    const Sample* row = Samples<Sample>(dest) + y * kSide;
    inside.insert(inside.end(), row + 1, row + kSide - 1);
  }
  return inside;
}

template <class Sample>
void ExpectAll(Sample expected, const std::vector<Sample>& samples) {
  EXPECT_EQ(std::vector<Sample>(samples.size(), expected), samples);
}

TEST(PlainRunByFftw, CutsWhatIsBehindThePoint) {
  ExpectAll<std::uint8_t>(100, QuartersOf<std::uint8_t>(0, 100));
  ExpectAll<std::uint16_t>(40000, QuartersOf<std::uint16_t>(1, 40000));
  ExpectAll<std::uint32_t>(1000000, QuartersOf<std::uint32_t>(2, 1000000));
}

TEST(PlainRunByFftw, KeepsWhatIsBehindThePointOfFloats) {
  for (const float sample : QuartersOf<float>(3, 100.0F)) {
    EXPECT_NEAR(0.25, std::min(sample - 100.0, 101.0 - sample), 1e-4);
  }
}

// An offset of three quarters of a step: a rounded sample would be one above.
TEST(PlainRunByFftw, CutsWhatIsBehindThePointWithGammaToo) {
  const Image mask = MakeImage(kSide, kSide, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 0);
  Samples<std::uint8_t>(mask)[8 * kSide + 8] = 255;
  DefocusEngine engine;
  engine.LoadPsf(mask.get(), 4);
  engine.SetGamma(2.0F);
  engine.SetOutputOffset(0.75F / 65535.0F);
  const Image source = MakeImage(kSide, kSide, 1, 1);
  lx_test::Fill<std::uint16_t>(source, 40000);
  const Image dest = MakeImage(kSide, kSide, 1, 1);
  engine.SetSourceImage(source.get());

  ASSERT_TRUE(engine.ConvolveChannels(dest.get(), 1));

  EXPECT_EQ(40000, Samples<std::uint16_t>(dest)[8 * kSide + 8]);
}

// With margins of zero nothing but the clearing makes them so. The PSF moves the picture by
// two columns, so the last two are of the margin.
TEST(PlainRunByFftw, ClearsItsArraysBehindMeasuredPlans) {
  lx_test::HeapFaults platform;
  platform.SetEnvironment(true);
  lx_test::FftRecorder fft;
  fft.OverwriteArrays();
  const Image mask = MakeImage(kSide, kSide, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 0);
  Samples<std::uint8_t>(mask)[8 * kSide + 6] = 255;
  DefocusEngine engine;
  engine.SetEdgeMode(lx::kEdgeZero);
  ASSERT_TRUE(engine.LoadPsf(mask.get(), 4));
  const Image source = MakeImage(kSide, kSide, 1, 3);
  lx_test::Fill<float>(source, 1.0F);
  const Image dest = MakeImage(kSide, kSide, 1, 3);
  engine.SetSourceImage(source.get());

  ASSERT_TRUE(engine.ConvolveChannels(dest.get(), 1));

  ASSERT_EQ(2, fft.Count("forward 32 flags 0"));
  for (int i = 0; i < kSide * kSide; ++i) {
    EXPECT_NEAR(i % kSide < kSide - 2 ? 1.0 : 0.0, Samples<float>(dest)[i], 1e-6) << i;
  }
}

}  // namespace
