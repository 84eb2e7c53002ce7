// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <random>
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
using lx_test::ComplexGrid;
using lx_test::Image;
using lx_test::Inside;
using lx_test::LoadMask;
using lx_test::MakeImage;
using lx_test::NoiseFrame;
using lx_test::Samples;
using lx_test::SpotMask;

// A block of numbers from -1 to 1 and room for its spectrum.
struct Block {
  explicit Block(int n) : side(n), numbers(Count(n)), spectrum(2 * Count(n)) {
    std::mt19937 random(5);
    for (float& value : numbers) {
      value = static_cast<float>(random() / 2147483648.0 - 1.0);
    }
  }

  static std::size_t Count(int n) { return static_cast<std::size_t>(n) * n; }

  float (*Spectrum())[2] { return reinterpret_cast<float(*)[2]>(spectrum.data()); }

  bool Forward(DefocusEngine* engine) {
    return engine->ForwardKernel2D(side, numbers.data(), Spectrum());
  }

  bool Inverse(DefocusEngine* engine) {
    return engine->InverseKernel2D(side, Spectrum(), numbers.data());
  }

  // Rows and columns have log2(side) stages each, and each rounds to 6e-8 of the root of the
  // squares' sum, which grows to the given multiple of side.
  double Tolerance(double multiple) const { return 2.0 * std::log2(side) * 6e-8 * side * multiple; }

  int side;
  std::vector<float> numbers;
  std::vector<float> spectrum;
};

TEST(KernelBlock, IsTransformedInTheKernelsOrderInEveryMode) {
  for (const std::int32_t mode : {1, 2, 3, 4}) {
    for (const int side : {2, 4, 8, 16, 64}) {
      DefocusEngine engine(mode);
      Block block(side);
      ComplexGrid expected(side, side);
      std::copy(block.numbers.begin(), block.numbers.end(), expected.values.begin());
      lx_test::Transform2D(&expected, true);

      ASSERT_TRUE(block.Forward(&engine));

      for (std::size_t i = 0; i < expected.values.size(); ++i) {
        ASSERT_NEAR(expected.values[i].real(), block.spectrum[2 * i], block.Tolerance(1.0))
            << "mode " << mode << " side " << side << " place " << i;
        ASSERT_NEAR(expected.values[i].imag(), block.spectrum[2 * i + 1], block.Tolerance(1.0))
            << "mode " << mode << " side " << side << " place " << i;
      }
    }
  }
}

// A spectrum of any complex numbers, of which the inverse gives the real parts.
TEST(KernelBlock, IsTheRealPartOfAnInverseWithoutScaling) {
  for (const int side : {2, 4, 16}) {
    DefocusEngine engine;
    Block block(side);
    ComplexGrid expected(side, side);
    std::mt19937 random(6);
    for (float& value : block.spectrum) {
      value = static_cast<float>(random() / 2147483648.0 - 1.0);
    }
    for (std::size_t i = 0; i < expected.values.size(); ++i) {
      expected.values[i] = {block.spectrum[2 * i], block.spectrum[2 * i + 1]};
    }
    lx_test::Transform2D(&expected, false);

    ASSERT_TRUE(block.Inverse(&engine));

    for (std::size_t i = 0; i < expected.values.size(); ++i) {
      ASSERT_NEAR(expected.values[i].real(), block.numbers[i], block.Tolerance(1.5))
          << "side " << side << " place " << i;
    }
  }
}

TEST(KernelBlock, ComesBackTimesTheNumberOfItsSamples) {
  for (int side = 2; side <= 256; side *= 2) {
    DefocusEngine engine;
    Block block(side);
    const std::vector<float> before = block.numbers;

    ASSERT_TRUE(block.Forward(&engine));
    ASSERT_TRUE(block.Inverse(&engine));

    const double factor = static_cast<double>(side) * side;
    for (std::size_t i = 0; i < before.size(); ++i) {
      // Both directions round, each in proportion to what it is scaled by.
      ASSERT_NEAR(before[i], block.numbers[i] / factor, 4.0 * std::log2(side) * 6e-8)
          << "side " << side << " at " << i;
    }
  }
}

TEST(KernelBlock, IsRefusedOfAnySizeButTheKernels) {
  for (const std::int32_t side : {-8, -1, 0, 1, 3, 6, 12, 8191, 8193, 16384, 1 << 30}) {
    DefocusEngine engine;
    float numbers[4] = {1, 2, 3, 4};
    float spectrum[4][2] = {{5, 6}, {7, 8}, {9, 10}, {11, 12}};

    EXPECT_FALSE(engine.ForwardKernel2D(side, numbers, spectrum)) << side;
    EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus()) << side;
    Inside(engine).SetStatus(0);
    EXPECT_FALSE(engine.InverseKernel2D(side, spectrum, numbers)) << side;
    EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus()) << side;

    EXPECT_EQ(1.0F, numbers[0]);
    EXPECT_EQ(5.0F, spectrum[0][0]);
    EXPECT_EQ(-1, Inside(engine).paddedWidth()) << side;
    EXPECT_EQ(nullptr, Inside(engine).frequencyTable()) << side;
  }
}

// Of 8192 only the table is asked for, which there is no memory for: the size itself is legal.
TEST(KernelBlock, MayBeOfTheLargestSize) {
  DefocusEngine engine;
  lx_test::HeapFaults heap;
  heap.RefuseAll();

  EXPECT_FALSE(engine.ForwardKernel2D(8192, nullptr, nullptr));

  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_GE(heap.LargestRequest(), 8192U * 4U);
}

TEST(KernelBlock, FailsWhereverMemoryIsWanted) {
  int refusals = 0;
  for (bool done = false; !done; ++refusals) {
    ASSERT_LT(refusals, 100);
    lx_test::HeapFaults heap;
    {
      DefocusEngine engine;
      Block block(16);
      heap.Refuse(refusals + 1);
      done = block.Forward(&engine);
      heap.Refuse(0);
      EXPECT_EQ(done ? lx::kStatusOk : lx::kStatusNoMemory, engine.GetStatus()) << refusals;
    }
    EXPECT_EQ(0, heap.Alive()) << refusals;
  }
  EXPECT_GE(refusals - 1, 2);  // the table and a line

  DefocusEngine engine;
  Block block(16);
  lx_test::HeapFaults heap;
  heap.Refuse(1);
  EXPECT_FALSE(block.Inverse(&engine));
  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
}

TEST(KernelBlock, TakesAnErrorBack) {
  DefocusEngine engine;
  Block block(4);
  engine.SetEdgeMode(0);
  EXPECT_TRUE(block.Forward(&engine));
  EXPECT_EQ(lx::kStatusOk, engine.GetStatus());

  engine.SetEdgeMode(0);
  EXPECT_TRUE(block.Inverse(&engine));
  EXPECT_EQ(lx::kStatusOk, engine.GetStatus());
}

TEST(KernelBlock, SetsThePaddedSizeAndThePassesTarget) {
  DefocusEngine engine(lx::kModeKernelF32);
  LoadMask(&engine, SpotMask(1));
  Block block(8);

  ASSERT_TRUE(block.Forward(&engine));
  EXPECT_EQ(8, Inside(engine).paddedWidth());
  EXPECT_EQ(8, Inside(engine).paddedHeight());

  Block other(4);
  ASSERT_TRUE(other.Inverse(&engine));
  EXPECT_EQ(4, Inside(engine).paddedWidth());
  EXPECT_EQ(4, Inside(engine).paddedHeight());
}

TEST(KernelBlock, RunsRowsThenColumnsInTheOwnersPasses) {
  lx_test::DividedPasses passes;
  DefocusEngine engine;
  passes.Attach(&engine);
  Block block(16);

  ASSERT_TRUE(block.Forward(&engine));
  ASSERT_TRUE(block.Inverse(&engine));

  EXPECT_EQ((std::vector<int>{16, 16, 16, 16}), passes.counts);
}

TEST(KernelBlock, HasTheSameBitsHoweverLinesAreDivided) {
  DefocusEngine inLine;
  Block expected(64);
  expected.Forward(&inLine);
  for (const int ways : {1, 2, 7}) {
    for (const bool onThreads : {false, true}) {
      lx_test::DividedPasses passes(ways, onThreads);
      DefocusEngine engine;
      passes.Attach(&engine);
      Block block(64);
      ASSERT_TRUE(block.Forward(&engine));
      EXPECT_EQ(expected.spectrum, block.spectrum) << ways << onThreads;
    }
  }
}

TEST(FrequencyTable, HoldsSignedFrequencies) {
  struct {
    int side;
    std::vector<std::int32_t> expected;
  } const cases[] = {{2, {0, -1}},
                     {4, {0, -2, 1, -1}},
                     {8, {0, -4, 2, -2, 1, -3, -1, 3}},
                     {16, {0, -8, 4, -4, 2, -6, -2, 6, 1, -7, 5, -3, -1, 7, 3, -5}}};
  for (const auto& one : cases) {
    DefocusEngine engine;
    Block block(one.side);
    ASSERT_TRUE(block.Forward(&engine));
    ASSERT_EQ(one.side, Inside(engine).frequencyTableSize());
    EXPECT_EQ(one.expected, std::vector<std::int32_t>(Inside(engine).frequencyTable(),
                                                      Inside(engine).frequencyTable() + one.side));
  }
}

TEST(FrequencyTable, IsMadeAnewForAnotherSizeOnly) {
  DefocusEngine engine;
  Block eight(8);
  Block four(4);
  eight.Forward(&engine);
  Inside(engine).frequencyTable()[1] = 99;

  ASSERT_TRUE(eight.Forward(&engine));
  EXPECT_EQ(99, Inside(engine).frequencyTable()[1]);

  ASSERT_TRUE(four.Inverse(&engine));
  EXPECT_EQ(99, Inside(engine).frequencyTable()[1]);

  ASSERT_TRUE(four.Forward(&engine));
  ASSERT_EQ(4, Inside(engine).frequencyTableSize());
  EXPECT_EQ(-2, Inside(engine).frequencyTable()[1]);
}

TEST(FrequencyLookUp, TellsRowAndColumnOfAPlace) {
  DefocusEngine engine;
  Block block(8);
  block.Forward(&engine);
  float row = 0.0F;
  float column = 0.0F;

  EXPECT_TRUE(engine.LookUpFrequency(1, 7, &row, &column));
  EXPECT_EQ(-4.0F, row);
  EXPECT_EQ(3.0F, column);
  EXPECT_TRUE(engine.LookUpFrequency(5, 0, &row, &column));
  EXPECT_EQ(-3.0F, row);
  EXPECT_EQ(0.0F, column);
}

TEST(FrequencyLookUp, KnowsNoPlaceOutsideAndNoneBeforeASpectrum) {
  DefocusEngine engine;
  float row = 50.0F;
  float column = 60.0F;
  EXPECT_FALSE(engine.LookUpFrequency(0, 0, &row, &column));

  Block block(8);
  block.Forward(&engine);
  for (const std::int32_t outside : {-1, 8, 1 << 30}) {
    EXPECT_FALSE(engine.LookUpFrequency(outside, 0, &row, &column)) << outside;
    EXPECT_FALSE(engine.LookUpFrequency(0, outside, &row, &column)) << outside;
  }

  EXPECT_EQ(50.0F, row);
  EXPECT_EQ(60.0F, column);
}

// A block moves the padded size on, and an engine's grids are of another size then: a run on them
// would read and write past their end.
class RunAfterABlock : public testing::TestWithParam<std::int32_t> {
 protected:
  RunAfterABlock() : engine(GetParam()) {
    LoadMask(&engine, SpotMask(1));
    engine.SetSourceImage(source.get());
    lx_test::Fill<std::uint16_t>(dest, 9);
  }

  bool DestIsUntouched() const {
    return std::all_of(Samples<std::uint16_t>(dest),
                       Samples<std::uint16_t>(dest) + lx_test::SampleCount(dest),
                       [](std::uint16_t v) { return v == 9; });
  }

  // The source's picture from an engine without a history.
  Image Fresh(int margin) const {
    DefocusEngine fresh(GetParam());
    EXPECT_TRUE(LoadMask(&fresh, SpotMask(1), lx_test::kFrameWidth, lx_test::kFrameHeight, margin));
    fresh.SetSourceImage(source.get());
    Image picture = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 4, lx::kSampleU16);
    EXPECT_TRUE(fresh.Convolve(picture.get(), 15));
    return picture;
  }

  DefocusEngine engine;
  const Image source = NoiseFrame(lx::kSampleU16, 3);
  const Image dest = MakeImage(lx_test::kFrameWidth, lx_test::kFrameHeight, 4, lx::kSampleU16);
};

INSTANTIATE_TEST_SUITE_P(Modes, RunAfterABlock,
                         testing::Values(lx::kModeKernelF32, lx::kModeKernelF64, lx::kModeFftw),
                         lx_test::ModeName);

TEST_P(RunAfterABlock, IsRefusedOnGridsOfAnotherSize) {
  for (const bool hasRun : {false, true}) {
    if (hasRun) {
      ASSERT_TRUE(LoadMask(&engine, SpotMask(1)));
      ASSERT_TRUE(engine.Convolve(dest.get(), 15));
      lx_test::Fill<std::uint16_t>(dest, 9);
    }
    for (const int side : {8, 64}) {
      Block block(side);
      ASSERT_TRUE(block.Forward(&engine));
      EXPECT_FALSE(engine.Convolve(dest.get(), 15)) << side;
      EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus()) << side;

      ASSERT_TRUE(block.Inverse(&engine));
      EXPECT_FALSE(engine.ConvolveChannels(dest.get(), 15)) << side;
      EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus()) << side;
    }
    EXPECT_TRUE(DestIsUntouched());
  }
}

TEST_P(RunAfterABlock, NeedsALoadWhichMakesTheGridsAnew) {
  for (const int side : {64, 8}) {
    ASSERT_TRUE(engine.Convolve(dest.get(), 15)) << side;
    Block block(side);
    ASSERT_TRUE(block.Forward(&engine));

    ASSERT_TRUE(LoadMask(&engine, SpotMask(1)));
    ASSERT_TRUE(engine.Convolve(dest.get(), 15)) << side;

    EXPECT_TRUE(lx_test::SameSamples(Fresh(lx_test::kFrameMargin), dest)) << side;
  }
}

// The block's size is the one that the load asks for, and the grids' is not.
TEST_P(RunAfterABlock, FindsNewGridsAfterALoadOfTheBlocksSize) {
  ASSERT_TRUE(engine.Convolve(dest.get(), 15));
  Block block(64);
  ASSERT_TRUE(block.Forward(&engine));

  ASSERT_TRUE(LoadMask(&engine, SpotMask(1), lx_test::kFrameWidth, lx_test::kFrameHeight, 23));
  ASSERT_EQ(64, Inside(engine).paddedWidth());
  ASSERT_EQ(64, Inside(engine).paddedHeight());

  ASSERT_TRUE(engine.Convolve(dest.get(), 15));
  EXPECT_TRUE(lx_test::SameSamples(Fresh(23), dest));
}

TEST_P(RunAfterABlock, GoesOnWithGridsOfTheBlocksSize) {
  // The frame pads to 64 x 64 in each mode.
  LoadMask(&engine, SpotMask(1), lx_test::kFrameWidth, lx_test::kFrameHeight, 23);
  ASSERT_EQ(64, Inside(engine).paddedWidth());
  ASSERT_EQ(64, Inside(engine).paddedHeight());
  Block block(64);

  ASSERT_TRUE(block.Forward(&engine));
  ASSERT_TRUE(engine.Convolve(dest.get(), 15));

  EXPECT_TRUE(lx_test::SameSamples(Fresh(23), dest));
}

TEST_P(RunAfterABlock, IsUnharmedByABlockThatWasRefused) {
  float numbers[1] = {};
  float spectrum[1][2] = {};
  EXPECT_FALSE(engine.ForwardKernel2D(6, numbers, spectrum));
  EXPECT_FALSE(engine.InverseKernel2D(6, spectrum, numbers));

  ASSERT_TRUE(engine.Convolve(dest.get(), 15));

  EXPECT_TRUE(lx_test::SameSamples(Fresh(lx_test::kFrameMargin), dest));
}

// The kernel modes' grids are 32 x 16 and 16 x 32 here: a block of 32 agrees with either on one
// side.
TEST(KernelRunAfterABlock, TakesBothSidesForTheSize) {
  for (const std::int32_t mode : {lx::kModeKernelF32, lx::kModeKernelF64}) {
    for (const bool isTall : {false, true}) {
      const int width = isTall ? 8 : 18;
      const int height = isTall ? 18 : 8;
      const Image source = lx_test::NoiseImage(width, height, 4, lx::kSampleU16, 3);
      const Image dest = MakeImage(width, height, 4, lx::kSampleU16);
      const Image expected = MakeImage(width, height, 4, lx::kSampleU16);
      DefocusEngine engine(mode);
      DefocusEngine fresh(mode);
      lx_test::LoadImpulse(&engine, width, height);
      engine.SetSourceImage(source.get());
      ASSERT_TRUE(engine.Convolve(dest.get(), 15));
      Block block(32);
      ASSERT_TRUE(block.Forward(&engine));

      EXPECT_FALSE(engine.Convolve(dest.get(), 15)) << isTall;
      EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus()) << isTall;

      // With this margin the frame pads to the block's size.
      for (DefocusEngine* one : {&engine, &fresh}) {
        ASSERT_TRUE(lx_test::LoadImpulse(one, width, height, 5));
        ASSERT_EQ(32, Inside(*one).paddedWidth());
        ASSERT_EQ(32, Inside(*one).paddedHeight());
        one->SetSourceImage(source.get());
      }
      ASSERT_TRUE(engine.Convolve(dest.get(), 15));
      ASSERT_TRUE(fresh.Convolve(expected.get(), 15));
      EXPECT_TRUE(lx_test::SameSamples(expected, dest)) << isTall;
    }
  }
}

}  // namespace
