// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <random>
#include <vector>

#include "fftlib/fftlib.h"
#include "fftlib/psf/normalise.h"
#include "tests/support/convolution_model.h"
#include "tests/support/engine_inside.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;
using lx_test::Samples;

constexpr int kWidth = 24;
constexpr int kHeight = 20;

std::vector<std::uint8_t> NoiseMask(std::uint32_t seed) {
  std::mt19937 random(seed);
  std::vector<std::uint8_t> mask(kWidth * kHeight, 0);
  for (int y = 6; y < 13; ++y) {
    for (int x = 8; x < 16; ++x) {
      mask[y * kWidth + x] = static_cast<std::uint8_t>(random());
    }
  }
  return mask;
}

bool Load(DefocusEngine* engine, const std::vector<std::uint8_t>& mask, int margin = 2) {
  const Image image = MakeImage(kWidth, kHeight, 1, 0);
  std::copy(mask.begin(), mask.end(), Samples<std::uint8_t>(image));
  return engine->LoadPsf(image.get(), margin);
}

void ExpectGrid(const lx_test::Grid& expected, const DefocusEngine& engine) {
  for (std::size_t i = 0; i < expected.values.size(); ++i) {
    // The engine's scale of a byte is 1 / 255 in single precision.
    ASSERT_NEAR(expected.values[i], Inside(engine).psfSpatial()[i], 1e-9) << i;
  }
}

TEST(NormaliseAndShift, MovesTheMiddleToTheCornerAndScalesToOne) {
  // 4 x 2, sum 36: rows rotate left by 2, columns up by 1.
  double even[] = {1, 2, 3, 4, 5, 6, 7, 8};
  ASSERT_EQ(0, lx::NormaliseAndShiftPsf(even, 4, 2));
  const double expectedEven[] = {7, 8, 5, 6, 3, 4, 1, 2};
  for (int i = 0; i < 8; ++i) {
    EXPECT_NEAR(expectedEven[i] / 36, even[i], 1e-15) << i;
  }
  // 3 x 5: left by 1, up by 2.
  double odd[15];
  for (int i = 0; i < 15; ++i) {
    odd[i] = i + 1;
  }
  ASSERT_EQ(0, lx::NormaliseAndShiftPsf(odd, 3, 5));
  for (int y = 0; y < 5; ++y) {
    for (int x = 0; x < 3; ++x) {
      EXPECT_NEAR(((y + 2) % 5 * 3 + (x + 1) % 3 + 1) / 120.0, odd[y * 3 + x], 1e-15);
    }
  }
}

TEST(NormaliseAndShift, LeavesTheBufferWithoutMemory) {
  lx_test::HeapFaults heap;
  heap.Refuse(1);
  double buffer[] = {1, 2, 3, 4};

  EXPECT_EQ(lx::kStatusNoMemory, lx::NormaliseAndShiftPsf(buffer, 2, 2));

  EXPECT_EQ(1, buffer[0]);
  EXPECT_EQ(4, buffer[3]);
}

TEST(PsfLoad, PutsTheMaskAroundTheGridsMiddleAndNotTheFrames) {
  DefocusEngine engine;
  lx_test::PsfModel model(32, kWidth, kHeight);

  ASSERT_TRUE(Load(&engine, NoiseMask(1)));
  model.Load(NoiseMask(1));

  ExpectGrid(model.Shifted(), engine);
  double sum = 0;
  for (int i = 0; i < 32 * 32; ++i) {
    sum += Inside(engine).psfSpatial()[i];
  }
  EXPECT_NEAR(1.0, sum, 1e-12);
}

TEST(PsfLoad, InheritsWhatTheLastLoadsLeftOutsideTheFrame) {
  DefocusEngine engine;
  lx_test::PsfModel model(32, kWidth, kHeight);

  for (const std::uint32_t seed : {1U, 2U, 3U}) {
    ASSERT_TRUE(Load(&engine, NoiseMask(seed)));
    model.Load(NoiseMask(seed));
    ExpectGrid(model.Shifted(), engine);
  }
}

TEST(PsfLoad, ForgetsAtAnotherPaddedSize) {
  DefocusEngine used;
  DefocusEngine fresh;
  Load(&used, NoiseMask(1), 2);

  Load(&used, NoiseMask(2), 12);
  Load(&fresh, NoiseMask(2), 12);

  ASSERT_EQ(64, Inside(used).paddedWidth());
  for (int i = 0; i < 64 * 64; ++i) {
    ASSERT_EQ(Inside(fresh).psfSpatial()[i], Inside(used).psfSpatial()[i]);
  }
}

TEST(PsfLoad, BecomesNotANumberForAnEmptyMaskAndStaysSoAtThatSize) {
  DefocusEngine engine;
  Load(&engine, std::vector<std::uint8_t>(kWidth * kHeight, 0));
  EXPECT_TRUE(std::isnan(Inside(engine).psfSpectrum()[0][0]));

  Load(&engine, NoiseMask(1));
  EXPECT_TRUE(std::isnan(Inside(engine).psfSpectrum()[0][0]));

  Load(&engine, NoiseMask(1), 12);
  EXPECT_NEAR(1.0, Inside(engine).psfSpectrum()[0][0], 1e-12);
}

TEST(PsfLoad, TakesTheResidueAsThePsfForAnEmptyMaskOnAUsedGrid) {
  DefocusEngine engine;
  lx_test::PsfModel model(32, kWidth, kHeight);
  const std::vector<std::uint8_t> empty(kWidth * kHeight, 0);
  Load(&engine, NoiseMask(1));
  model.Load(NoiseMask(1));

  Load(&engine, empty);
  model.Load(empty);

  ExpectGrid(model.Shifted(), engine);
  EXPECT_NEAR(1.0, Inside(engine).psfSpectrum()[0][0], 1e-12);
}

TEST(PsfLoad, KeepsTheSpectrumWithoutAWorkLineAndZerosAtANewSize) {
  DefocusEngine engine;
  Load(&engine, NoiseMask(1));
  const double real = Inside(engine).psfSpectrum()[5][0];
  lx_test::HeapFaults heap;
  const Image mask = MakeImage(kWidth, kHeight, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 9);

  heap.Refuse(1);
  EXPECT_FALSE(engine.LoadPsf(mask.get(), 2));
  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_EQ(real, Inside(engine).psfSpectrum()[5][0]);

  heap.Refuse(1);
  EXPECT_FALSE(engine.LoadPsf(mask.get(), 12));
  EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
  EXPECT_EQ(0.0, Inside(engine).psfSpectrum()[5][0]);
}

}  // namespace
