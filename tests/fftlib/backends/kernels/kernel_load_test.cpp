// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
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
using lx_test::SpotMask;

constexpr std::size_t kGridSamples = std::size_t{lx_test::kGridWidth} * lx_test::kGridHeight;

class KernelLoad : public testing::TestWithParam<std::int32_t> {
 protected:
  KernelLoad() : engine(GetParam()) {}

  DefocusEngine engine;
  KernelModel model{lx_test::kFrameWidth, lx_test::kFrameHeight, lx_test::kFrameMargin};
};

INSTANTIATE_TEST_SUITE_P(Modes, KernelLoad, testing::Values(lx::kModeKernelF32, lx::kModeKernelF64),
                         lx_test::ModeName);

// Errors grow with the spectrum's largest value.
void ExpectSpectrum(const KernelModel& model, const DefocusEngine& engine) {
  double largest = 0.0;
  for (const auto& value : model.psf.values) {
    largest = std::max(largest, std::abs(value));
  }
  ASSERT_EQ(model.psf.width, Inside(engine).paddedWidth());
  ASSERT_EQ(model.psf.height, Inside(engine).paddedHeight());
  for (std::size_t i = 0; i < model.psf.values.size(); ++i) {
    const auto got = lx_test::GridSample(engine, Inside(engine).kernelPsf(), i);
    ASSERT_NEAR(0.0, std::abs(model.psf.values[i] - got),
                model.Tolerance(Inside(engine).engineMode()) * largest)
        << "place " << i % model.psf.width << "," << i / model.psf.width << " expected "
        << model.psf.values[i] << " got " << got;
  }
}

struct GridCase {
  int width;
  int height;
  int margin;
  int paddedWidth;
  int paddedHeight;
  int offsetX;
  int offsetY;
};

// Without memory: the sizes are there before the blocks.
TEST_P(KernelLoad, KeepsTheGridsSidesApart) {
  const GridCase cases[] = {{1920, 1080, 101, 4096, 2048, 1088, 484},
                            {1080, 1920, 101, 2048, 4096, 484, 1088},
                            {18, 8, 4, 32, 16, 7, 4},
                            {17, 7, 4, 32, 16, 7, 4},
                            {16, 5, 0, 16, 8, 0, 1},
                            {2, 8192, 0, 2, 8192, 0, 0}};
  for (const GridCase& one : cases) {
    const Image mask = MakeImage(one.width, one.height, 1, 0);
    lx_test::HeapFaults heap;
    DefocusEngine fresh(GetParam());
    heap.RefuseAll();

    EXPECT_FALSE(fresh.LoadPsf(mask.get(), one.margin));

    EXPECT_EQ(one.paddedWidth, Inside(fresh).paddedWidth()) << one.width;
    EXPECT_EQ(one.paddedHeight, Inside(fresh).paddedHeight()) << one.width;
    EXPECT_EQ(one.offsetX, Inside(fresh).offsetX()) << one.width;
    EXPECT_EQ(one.offsetY, Inside(fresh).offsetY()) << one.width;
  }
}

TEST_P(KernelLoad, AsksForAComplexSampleOfTheModesPrecisionPerPlaceOfTheGrid) {
  const Image mask = MakeImage(1920, 1080, 1, 0);
  lx_test::HeapFaults heap;
  heap.RefuseAll();

  EXPECT_FALSE(engine.LoadPsf(mask.get(), 101));

  const std::size_t block = std::size_t{4096} * 2048 * (GetParam() == 1 ? 8 : 16);
  EXPECT_GE(heap.LargestRequest(), block);
  EXPECT_LT(heap.LargestRequest(), block + 65536);  // what alignment may add
}

TEST_P(KernelLoad, RefusesAGridOutOfRangeOnEitherSide) {
  struct {
    int width, height, margin;
  } const cases[] = {{8193, 4, 0}, {4, 8193, 0}, {4096, 4, 4000}, {1, 8, 0}, {8, 1, 0}};
  for (const auto& one : cases) {
    DefocusEngine fresh(GetParam());
    const Image mask = MakeImage(one.width, one.height, 1, 0);
    lx_test::Fill<std::uint8_t>(mask, 1);

    EXPECT_FALSE(fresh.LoadPsf(mask.get(), one.margin));

    EXPECT_EQ(lx::kStatusSizeRange, fresh.GetStatus()) << one.width << "x" << one.height;
    EXPECT_EQ(nullptr, Inside(fresh).psfImage());
    EXPECT_EQ(nullptr, Inside(fresh).kernelPsf());
  }
}

TEST_P(KernelLoad, ForgetsThePsfAndKeepsTheGridOnARefusal) {
  LoadMask(&engine, SpotMask(1));
  const auto before = lx_test::GridOf(engine, Inside(engine).kernelPsf()).values;
  const void* block = Inside(engine).kernelPsf();
  const Image mask = MakeImage(8193, 4, 1, 0);

  EXPECT_FALSE(engine.LoadPsf(mask.get(), 3));

  EXPECT_EQ(nullptr, Inside(engine).psfImage());
  EXPECT_EQ(8193, Inside(engine).frameWidth());
  EXPECT_EQ(4, Inside(engine).frameHeight());
  EXPECT_EQ(3, Inside(engine).margin());
  EXPECT_EQ(lx_test::kGridWidth, Inside(engine).paddedWidth());
  EXPECT_EQ(lx_test::kGridHeight, Inside(engine).paddedHeight());
  EXPECT_EQ(7, Inside(engine).offsetX());
  EXPECT_EQ(4, Inside(engine).offsetY());
  ASSERT_EQ(block, Inside(engine).kernelPsf());
  EXPECT_EQ(before, lx_test::GridOf(engine, Inside(engine).kernelPsf()).values);
}

TEST_P(KernelLoad, StoresTheScaledSpectrumOfTheShiftedMask) {
  ASSERT_TRUE(LoadMask(&engine, SpotMask(1)));
  model.Load(MaskValues(SpotMask(1)));

  ExpectSpectrum(model, engine);
}

// An impulse in the middle moves to (0, 0), whose spectrum is the same everywhere: all of it is
// the factor that the runs do without.
TEST_P(KernelLoad, LeavesOnePerGridSampleInTheSpectrumOfAnImpulse) {
  ASSERT_TRUE(lx_test::LoadImpulse(&engine));

  // The scale of the sum is single in both modes, so one rounding of 6e-8 stays.
  const double expected = 1.0 / kGridSamples;
  for (std::size_t i = 0; i < kGridSamples; ++i) {
    const auto got = lx_test::GridSample(engine, Inside(engine).kernelPsf(), i);
    ASSERT_NEAR(expected, got.real(), 2e-7 * expected) << i;
    ASSERT_NEAR(0.0, got.imag(), 2e-7 * expected) << i;
  }
}

// In double the factor's rounding to 32 bits shows in the first value, the sum of the PSF.
TEST(KernelLoadInDouble, ScalesTheMaskByA32BitFactor) {
  DefocusEngine engine(lx::kModeKernelF64);
  const std::vector<std::uint8_t> mask = SpotMask(1);
  ASSERT_TRUE(LoadMask(&engine, mask));

  double sum = 0.0;
  for (const double value : MaskValues(mask)) {
    sum += value;
  }
  const double factor = static_cast<float>(1.0 / sum);
  ASSERT_GT(std::abs(factor * sum - 1.0), 1e-9);  // this mask's factor is not exact
  const auto first = lx_test::GridSample(engine, Inside(engine).kernelPsf(), 0);
  EXPECT_NEAR(factor * sum, first.real() * kGridSamples, 1e-13);
}

// The second mask's weight beside the residue of the first tells its scale.
TEST_P(KernelLoad, ScalesAMaskByItsSampleType) {
  struct {
    std::uint32_t type;
    double largest;
    double scale;
  } const cases[] = {{lx::kSampleU8, 3.0, 0.003921568859368563},
                     {lx::kSampleU16, 900.0, 1.5259021893143654e-05},
                     {lx::kSampleU32, 6e7, 2.3283064365386963e-10},
                     {lx::kSampleFloat, 0.02, 1.0}};
  for (const auto& one : cases) {
    DefocusEngine used(GetParam());
    KernelModel expected(lx_test::kFrameWidth, lx_test::kFrameHeight, lx_test::kFrameMargin);
    LoadMask(&used, SpotMask(1));
    expected.Load(MaskValues(SpotMask(1)));
    const Image mask = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 1, one.type);
    std::vector<double> values;
    for (std::size_t i = 0; i < lx_test::kPixels; ++i) {
      lx_test::SetSample(mask, i, one.largest * static_cast<double>(i % 5) / 4.0);
      values.push_back(lx_test::SampleAt(mask, i) * one.scale);
    }

    ASSERT_TRUE(used.LoadPsf(mask.get(), lx_test::kFrameMargin));
    expected.Load(values);

    SCOPED_TRACE(one.type);
    ExpectSpectrum(expected, used);
  }
}

// What is left outside the frame's rectangle is the last spectrum, complex and in its own order.
// Weak masks let it weigh.
TEST_P(KernelLoad, InheritsTheLastSpectrumOutsideTheFrame) {
  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    ASSERT_TRUE(LoadMask(&engine, SpotMask(seed, 4)));
    model.Load(MaskValues(SpotMask(seed, 4)));

    SCOPED_TRACE(seed);
    ExpectSpectrum(model, engine);
  }
  // The residue's imaginary parts came along: of a real PSF the highest frequency of either
  // direction, which stands at place 1, is real.
  EXPECT_GT(std::abs(model.psf.At(1, 1).imag()), 1e-3 * std::abs(model.psf.values[0].real()));
}

TEST_P(KernelLoad, HasNoNumbersForAnEmptyMaskOnANewGrid) {
  ASSERT_TRUE(LoadMask(&engine, std::vector<std::uint8_t>(lx_test::kPixels, 0)));

  EXPECT_TRUE(std::isnan(lx_test::GridSample(engine, Inside(engine).kernelPsf(), 0).real()));
}

TEST_P(KernelLoad, ClearsTheWorkGridWhenItIsMadeAndNotAtTheNextLoad) {
  LoadMask(&engine, SpotMask(1));
  ASSERT_NE(nullptr, Inside(engine).kernelWork());
  const lx_test::ComplexGrid cleared(lx_test::kGridWidth, lx_test::kGridHeight);
  EXPECT_EQ(cleared.values, lx_test::GridOf(engine, Inside(engine).kernelWork()).values);
  lx_test::ComplexGrid marked = cleared;
  marked.At(3, 2) = {5.0, 7.0};
  lx_test::SetGrid(engine, Inside(engine).kernelWork(), marked);

  LoadMask(&engine, SpotMask(2));

  EXPECT_EQ(marked.values, lx_test::GridOf(engine, Inside(engine).kernelWork()).values);
}

TEST_P(KernelLoad, LeavesTheResultGridsToTheFirstRun) {
  LoadMask(&engine, SpotMask(1));

  EXPECT_EQ(nullptr, Inside(engine).kernelLuma());
  EXPECT_EQ(nullptr, Inside(engine).kernelCr());
  EXPECT_EQ(nullptr, Inside(engine).kernelCb());
  EXPECT_EQ(nullptr, Inside(engine).psfSpatial());
  EXPECT_EQ(nullptr, Inside(engine).psfSpectrum());
}

TEST_P(KernelLoad, FreesAllFiveGridsAtAnotherPaddedSize) {
  lx_test::HeapFaults heap;
  DefocusEngine used(GetParam());
  LoadMask(&used, SpotMask(1));
  const Image source = lx_test::NoiseFrame(lx::kSampleU16, 1);
  used.SetSourceImage(source.get());
  const int withTwo = heap.Alive();
  ASSERT_TRUE(used.Convolve(source.get(), 15));
  ASSERT_EQ(withTwo + 3, heap.Alive());

  // Only one side changes.
  ASSERT_TRUE(LoadMask(&used, SpotMask(1), lx_test::kFrameWidth, lx_test::kFrameHeight, 5));

  ASSERT_EQ(32, Inside(used).paddedWidth());
  ASSERT_EQ(32, Inside(used).paddedHeight());
  EXPECT_EQ(withTwo, heap.Alive());
  EXPECT_EQ(nullptr, Inside(used).kernelLuma());
  EXPECT_EQ(nullptr, Inside(used).kernelCr());
  EXPECT_EQ(nullptr, Inside(used).kernelCb());
}

TEST_P(KernelLoad, ForgetsAtAnotherPaddedSize) {
  LoadMask(&engine, SpotMask(1, 4));
  DefocusEngine fresh(GetParam());

  for (DefocusEngine* one : {&engine, &fresh}) {
    ASSERT_TRUE(LoadMask(one, SpotMask(2, 4), lx_test::kFrameWidth, lx_test::kFrameHeight, 9));
  }

  ASSERT_EQ(64, Inside(engine).paddedWidth());
  ASSERT_EQ(32, Inside(engine).paddedHeight());
  EXPECT_EQ(lx_test::GridOf(fresh, Inside(fresh).kernelPsf()).values,
            lx_test::GridOf(engine, Inside(engine).kernelPsf()).values);
}

TEST_P(KernelLoad, KeepsTheGridsForAFrameThatPadsToTheSameSize) {
  LoadMask(&engine, SpotMask(1));
  const void* psf = Inside(engine).kernelPsf();
  const void* work = Inside(engine).kernelWork();

  ASSERT_TRUE(lx_test::LoadImpulse(&engine, 20, 10, 3));

  EXPECT_EQ(psf, Inside(engine).kernelPsf());
  EXPECT_EQ(work, Inside(engine).kernelWork());
  EXPECT_EQ(20, Inside(engine).frameWidth());
  EXPECT_EQ(6, Inside(engine).offsetX());
  EXPECT_EQ(3, Inside(engine).offsetY());
}

TEST_P(KernelLoad, ForgetsThePsfForWantOfMemoryWhereverItIsWanted) {
  const Image source = lx_test::NoiseFrame(lx::kSampleU16, 1);
  int refusals = 0;
  for (bool loaded = false; !loaded; ++refusals) {
    ASSERT_LT(refusals, 100);
    lx_test::HeapFaults heap;
    {
      const Image mask = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 1, 0);
      lx_test::Fill<std::uint8_t>(mask, 1);
      DefocusEngine one(GetParam());
      heap.Refuse(refusals + 1);
      loaded = one.LoadPsf(mask.get(), lx_test::kFrameMargin);
      heap.Refuse(0);
      if (!loaded) {
        EXPECT_EQ(lx::kStatusNoMemory, one.GetStatus()) << refusals;
        EXPECT_EQ(nullptr, Inside(one).psfImage()) << refusals;
        one.SetSourceImage(source.get());
        EXPECT_FALSE(one.Convolve(source.get(), 15)) << refusals;
        EXPECT_EQ(lx::kStatusNotLoaded, one.GetStatus()) << refusals;
      }
    }
    EXPECT_EQ(0, heap.Alive()) << refusals;
  }
  // Two grids, the line that shifts, and a line at least for each of two passes over columns.
  EXPECT_GE(refusals - 1, 5);
}

TEST_P(KernelLoad, LoadsAgainAfterWantOfMemory) {
  {
    const Image mask = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 1, 0);
    lx_test::HeapFaults heap;
    heap.Refuse(2);  // the second grid
    ASSERT_FALSE(engine.LoadPsf(mask.get(), lx_test::kFrameMargin));
  }

  ASSERT_TRUE(LoadMask(&engine, SpotMask(1)));

  model.Load(MaskValues(SpotMask(1)));
  ExpectSpectrum(model, engine);
}

TEST_P(KernelLoad, RunsFiveCancellablePasses) {
  lx_test::DividedPasses passes;
  passes.Attach(&engine);
  LoadMask(&engine, SpotMask(1));
  // Mask rows, then rows and columns forwards, then rows and columns scaled.
  EXPECT_EQ((std::vector<int>{8, 16, 32, 16, 32}), passes.counts);

  DefocusEngine polled(GetParam());
  lx_test::PollCounter counter;
  counter.Attach(&polled);
  LoadMask(&polled, SpotMask(1));
  EXPECT_EQ(8 + 16 + 32 + 16 + 32, counter.polls);
}

TEST_P(KernelLoad, GivesTheSameBitsHoweverLinesAreDivided) {
  LoadMask(&engine, SpotMask(1));
  for (const int ways : {1, 2, 7}) {
    for (const bool onThreads : {false, true}) {
      lx_test::DividedPasses passes(ways, onThreads);
      DefocusEngine divided(GetParam());
      passes.Attach(&divided);
      LoadMask(&divided, SpotMask(1));
      EXPECT_EQ(lx_test::GridOf(engine, Inside(engine).kernelPsf()).values,
                lx_test::GridOf(divided, Inside(divided).kernelPsf()).values)
          << ways << onThreads;
    }
  }
}

TEST(KernelModes, CountAsSingleForNumbersThatAreNone) {
  DefocusEngine single(lx::kModeKernelF32);
  LoadMask(&single, SpotMask(1));
  for (const std::int32_t mode : {0, -1, 6, 77}) {
    DefocusEngine engine(mode);
    ASSERT_TRUE(LoadMask(&engine, SpotMask(1))) << mode;
    EXPECT_EQ(lx_test::GridOf(single, Inside(single).kernelPsf()).values,
              lx_test::GridOf(engine, Inside(engine).kernelPsf()).values)
        << mode;
  }
}

TEST(KernelModes, AnswerFalseWithoutABackEndAndSayNothing) {
  DefocusEngine engine(lx::kModeNone);
  const Image image = lx_test::NoiseFrame(lx::kSampleU16, 1);
  ASSERT_FALSE(engine.SetEdgeMode(0));

  EXPECT_FALSE(LoadMask(&engine, SpotMask(1)));
  EXPECT_FALSE(engine.Convolve(image.get(), 15));
  EXPECT_FALSE(engine.ConvolveChannels(image.get(), 15));

  EXPECT_EQ(lx::kStatusEdgeMode, engine.GetStatus());
}

}  // namespace
