// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/divided_passes.h"
#include "tests/support/engine_inside.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"
#include "tests/support/kernel_model.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::Inside;
using lx_test::KernelModel;
using lx_test::LoadMask;
using lx_test::MakeImage;
using lx_test::MaskValues;
using lx_test::Samples;
using lx_test::SpotMask;

class KernelChannels : public testing::TestWithParam<std::int32_t> {
 protected:
  KernelChannels() : engine(GetParam()) {}

  void Load(const std::vector<std::uint8_t>& mask) {
    ASSERT_TRUE(LoadMask(&engine, mask));
    model.Load(MaskValues(mask));
  }

  // All values of a run times a factor, which brings them out of their range.
  void ScaleSpectrum(double factor) {
    lx_test::ComplexGrid spectrum = lx_test::GridOf(engine, Inside(engine).kernelPsf());
    for (auto& value : spectrum.values) {
      value *= factor;
    }
    lx_test::SetGrid(engine, Inside(engine).kernelPsf(), spectrum);
  }

  Image Blur(const Image& source, std::uint32_t mask) {
    Image dest = MakeImage(source->width, source->height, source->channels, source->sampleType);
    std::fill_n(Samples<std::uint8_t>(dest), lx_test::SampleCount(dest) * dest->elementBytes,
                std::uint8_t{0x55});
    EXPECT_TRUE(engine.SetSourceImage(source.get()));
    EXPECT_TRUE(engine.ConvolveChannels(dest.get(), mask));
    return dest;
  }

  std::vector<double> Expected(const Image& source, int channel) {
    std::vector<double> plane;
    for (std::size_t i = 0; i < lx_test::kPixels; ++i) {
      plane.push_back(lx_test::SampleAt(source, i * source->channels + channel));
    }
    return model.Run(plane, Inside(engine).edgeMode());
  }

  DefocusEngine engine;
  KernelModel model{lx_test::kFrameWidth, lx_test::kFrameHeight, lx_test::kFrameMargin};
};

INSTANTIATE_TEST_SUITE_P(Modes, KernelChannels,
                         testing::Values(lx::kModeKernelF32, lx::kModeKernelF64),
                         lx_test::ModeName);

// Values are the direct sum's integer part: noise may carry one over a whole number, but half of
// them would be a whole step higher if they were rounded.
TEST_P(KernelChannels, TruncatesADirectSumOfRawNumbers) {
  for (const std::int32_t edgeMode : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    for (const std::uint32_t type : {lx::kSampleU8, lx::kSampleU16, lx::kSampleU32}) {
      DefocusEngine fresh(GetParam());
      LoadMask(&fresh, SpotMask(1));
      fresh.SetEdgeMode(edgeMode);
      KernelModel expected(lx_test::kFrameWidth, lx_test::kFrameHeight, lx_test::kFrameMargin);
      expected.Load(MaskValues(SpotMask(1)));
      const Image source = lx_test::NoiseFrame(type, 3, 0.1, 0.9, 1);
      const Image dest = lx_test::NoiseFrame(type, 4, 0.0, 1.0, 1);
      fresh.SetSourceImage(source.get());

      ASSERT_TRUE(fresh.ConvolveChannels(dest.get(), 1));

      std::vector<double> plane;
      for (std::size_t i = 0; i < lx_test::kPixels; ++i) {
        plane.push_back(lx_test::SampleAt(source, i));
      }
      const std::vector<double> sums = expected.Run(plane, edgeMode);
      const double noise = expected.Tolerance(GetParam()) * lx_test::LargestSample(type);
      for (std::size_t i = 0; i < lx_test::kPixels; ++i) {
        const double got = lx_test::SampleAt(dest, i);
        ASSERT_LE(got, sums[i] + noise) << "type " << type << " edge " << edgeMode << " at " << i;
        ASSERT_GT(got, sums[i] - 1.0 - noise) << "type " << type << " edge " << edgeMode;
      }
    }
  }
}

TEST_P(KernelChannels, StoresFloatsAsTheyComeOut) {
  Load(SpotMask(1));
  const Image source = lx_test::NoiseFrame(lx::kSampleFloat, 3, -300.0, 300.0, 2);

  const Image dest = Blur(source, 2);

  const std::vector<double> expected = Expected(source, 1);
  // Beside the transform's error, the result's own rounding to a 32-bit number.
  const double tolerance = (model.Tolerance(GetParam()) + 6e-8) * 300.0;
  for (std::size_t i = 0; i < lx_test::kPixels; ++i) {
    ASSERT_NEAR(expected[i], Samples<float>(dest)[i * 2 + 1], tolerance) << i;
  }
}

TEST_P(KernelChannels, ClampsToTheRangeOfTheSampleType) {
  Load(SpotMask(1));
  ScaleSpectrum(3.0);
  const Image bytes = lx_test::NoiseFrame(lx::kSampleU8, 3, 0.5, 1.0, 1);
  const Image words = lx_test::NoiseFrame(lx::kSampleU16, 3, 0.5, 1.0, 1);
  const Image floats = lx_test::NoiseFrame(lx::kSampleFloat, 3, 0.5, 1.0, 1);

  EXPECT_EQ(255, Samples<std::uint8_t>(Blur(bytes, 1))[50]);
  EXPECT_EQ(65535, Samples<std::uint16_t>(Blur(words, 1))[50]);
  EXPECT_GT(Samples<float>(Blur(floats, 1))[50], 1.5F);

  ScaleSpectrum(-1.0);
  EXPECT_EQ(0, Samples<std::uint8_t>(Blur(bytes, 1))[50]);
  EXPECT_EQ(0, Samples<std::uint16_t>(Blur(words, 1))[50]);
  EXPECT_LT(Samples<float>(Blur(floats, 1))[50], -1.5F);
}

// The limit of 32 bits is one above their largest number.
TEST_P(KernelChannels, WrapsTheLimitOf32BitsToZero) {
  Load(SpotMask(1));
  ScaleSpectrum(2.0);
  const Image source = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 1, lx::kSampleU32);
  lx_test::Fill<std::uint32_t>(source, 0xFFFFFFFFU);

  EXPECT_EQ(0U, Samples<std::uint32_t>(Blur(source, 1))[50]);
}

TEST_P(KernelChannels, KnowsNeitherGammaNorGainNorEmphasis) {
  Load(SpotMask(1));
  const Image source = lx_test::NoiseFrame(lx::kSampleU16, 3);
  const Image plain = Blur(source, 15);

  engine.SetGamma(2.2F);
  engine.SetOutputGain(3.0F);
  engine.SetOutputOffset(0.5F);
  engine.SetEmphasis(20.0F);
  engine.SetEmphasisAlpha(true);
  const Image dest = Blur(source, 15);

  EXPECT_TRUE(lx_test::SameSamples(plain, dest));
}

TEST_P(KernelChannels, WritesTheChannelsOfTheMaskThatBothImagesHave) {
  Load(SpotMask(1));
  const Image source = lx_test::NoiseFrame(lx::kSampleU16, 3, 0.0, 1.0, 6);
  const Image whole = Blur(source, 0x3F);
  Image dest = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 5, lx::kSampleU16);
  lx_test::Fill<std::uint16_t>(dest, 9);

  EXPECT_TRUE(engine.ConvolveChannels(dest.get(), 0x32));  // 1, 4 and 5

  for (std::size_t i = 0; i < lx_test::kPixels; ++i) {
    for (const int c : {0, 2, 3}) {
      ASSERT_EQ(9, Samples<std::uint16_t>(dest)[i * 5 + c]) << i << " channel " << c;
    }
    for (const int c : {1, 4}) {
      ASSERT_EQ(Samples<std::uint16_t>(whole)[i * 6 + c], Samples<std::uint16_t>(dest)[i * 5 + c])
          << i << " channel " << c;
    }
  }
}

TEST_P(KernelChannels, ChecksPsfSourceAndDestinationOnly) {
  const Image source = lx_test::NoiseFrame(lx::kSampleFloat, 3, 0.0, 1.0, 1);
  const Image small = MakeImage(4, 4, 1, lx::kSampleFloat);
  const Image words = lx_test::NoiseFrame(lx::kSampleU16, 3, 0.0, 1.0, 1);

  EXPECT_FALSE(engine.ConvolveChannels(small.get(), 1));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  Load(SpotMask(1));
  EXPECT_FALSE(engine.ConvolveChannels(small.get(), 1));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  engine.SetSourceImage(source.get());
  EXPECT_FALSE(engine.ConvolveChannels(small.get(), 1));
  EXPECT_EQ(lx::kStatusDestination, engine.GetStatus());
  EXPECT_FALSE(engine.ConvolveChannels(words.get(), 1));
  EXPECT_EQ(lx::kStatusDestination, engine.GetStatus());
  EXPECT_TRUE(engine.ConvolveChannels(source.get(), 0));
  EXPECT_TRUE(engine.ConvolveChannels(source.get(), 1));
}

// With margins of zero each channel finds in them what the last one left, in both runs. The
// second load's PSF is complex, so that the imaginary parts count too.
TEST_P(KernelChannels, FindsTheLastResultInMarginsOfZero) {
  Load(SpotMask(1, 4));
  Load(SpotMask(2, 4));
  engine.SetEdgeMode(lx::kEdgeZero);
  const Image source = lx_test::NoiseFrame(lx::kSampleFloat, 3, 0.0, 1.0, 3);

  for (int run = 0; run < 2; ++run) {
    const Image dest = Blur(source, 7);

    for (int c = 0; c < 3; ++c) {
      const std::vector<double> expected = Expected(source, c);
      // What a run is off by goes through the next ones.
      const double tolerance = 6.0 * (model.Tolerance(GetParam()) + 6e-8);
      for (std::size_t i = 0; i < lx_test::kPixels; ++i) {
        ASSERT_NEAR(expected[i], Samples<float>(dest)[i * 3 + c], tolerance)
            << "run " << run << " channel " << c << " at " << i;
      }
    }
  }
}

TEST_P(KernelChannels, NeedsNoResultGrids) {
  Load(SpotMask(1));

  Blur(lx_test::NoiseFrame(lx::kSampleU16, 3), 15);

  EXPECT_EQ(nullptr, Inside(engine).kernelLuma());
  EXPECT_EQ(nullptr, Inside(engine).kernelCr());
  EXPECT_EQ(nullptr, Inside(engine).kernelCb());
}

TEST_P(KernelChannels, RunsSevenPassesForEachChannel) {
  lx_test::DividedPasses passes;
  Load(SpotMask(1));
  passes.Attach(&engine);

  Blur(lx_test::NoiseFrame(lx::kSampleU16, 3), 5);

  // Rows of the source, rows and columns of the grid forwards, its rows multiplied, rows and
  // columns back, rows of the destination.
  const std::vector<int> one{8, 16, 32, 16, 16, 32, 8};
  std::vector<int> two = one;
  two.insert(two.end(), one.begin(), one.end());
  EXPECT_EQ(two, passes.counts);
}

TEST_P(KernelChannels, GiveTheSameBitsHoweverLinesAreDivided) {
  Load(SpotMask(1));
  const Image source = lx_test::NoiseFrame(lx::kSampleFloat, 3);
  const Image expected = Blur(source, 15);
  for (const int ways : {2, 7}) {
    for (const bool onThreads : {false, true}) {
      lx_test::DividedPasses passes(ways, onThreads);
      passes.Attach(&engine);
      EXPECT_TRUE(lx_test::SameSamples(expected, Blur(source, 15))) << ways << onThreads;
    }
  }
}

TEST_P(KernelChannels, KeepWhatIsWrittenWhenMemoryRunsOut) {
  const Image source = lx_test::NoiseFrame(lx::kSampleU16, 3);
  const Image dest = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 4, lx::kSampleU16);
  lx_test::Fill<std::uint16_t>(dest, 9);
  Load(SpotMask(1));
  engine.SetSourceImage(source.get());
  lx_test::HeapFaults heap;
  ASSERT_TRUE(engine.ConvolveChannels(dest.get(), 1));
  const std::uint16_t first = Samples<std::uint16_t>(dest)[0];
  const int perChannel = heap.Allocations();
  ASSERT_GT(perChannel, 0);  // the lines of the passes over columns
  lx_test::Fill<std::uint16_t>(dest, 9);

  heap.Refuse(perChannel + 1);  // the second channel's first

  EXPECT_FALSE(engine.ConvolveChannels(dest.get(), 3));
  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_EQ(first, Samples<std::uint16_t>(dest)[0]);
  EXPECT_EQ(9, Samples<std::uint16_t>(dest)[1]);
}

}  // namespace
