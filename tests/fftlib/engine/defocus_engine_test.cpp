// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cmath>
#include <cstdint>
#include <cstring>
#include <limits>

#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"
#include "tests/support/system.h"

namespace {

using lx::DefocusEngine;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;

Image Frame(int width, int height) {
  Image image = MakeImage(width, height, 4, 1);
  lx_test::FillNoise(image, 2);
  return image;
}

void Build(DefocusEngine* engine, int width, int height, float radius) {
  engine->BuildShapePsf(width, height, 1, radius, radius, 0, 6);
}

TEST(NextPowerOfTwo, IsTheSmallestNotBelow) {
  std::int32_t exponent = -1;
  EXPECT_EQ(1, lx::NextPowerOfTwo(-5));
  EXPECT_EQ(1, lx::NextPowerOfTwo(0, &exponent));
  EXPECT_EQ(0, exponent);
  EXPECT_EQ(1, lx::NextPowerOfTwo(1));
  EXPECT_EQ(2, lx::NextPowerOfTwo(2));
  EXPECT_EQ(4, lx::NextPowerOfTwo(3, &exponent));
  EXPECT_EQ(2, exponent);
  EXPECT_EQ(std::int64_t{1} << 31, lx::NextPowerOfTwo((std::int64_t{1} << 30) + 1));
}

TEST(DefocusEngine, StartsEmpty) {
  const DefocusEngine engine;

  EXPECT_EQ(nullptr, Inside(engine).psfImage());
  EXPECT_EQ(nullptr, Inside(engine).sourceImage());
  EXPECT_EQ(nullptr, Inside(engine).psfMask());
  EXPECT_EQ(nullptr, Inside(engine).psfSpatial());
  EXPECT_EQ(nullptr, Inside(engine).workSpatial());
  EXPECT_EQ(nullptr, Inside(engine).psfPlan());
  EXPECT_EQ(nullptr, Inside(engine).forwardPlan());
  EXPECT_EQ(nullptr, Inside(engine).inversePlan());
  EXPECT_EQ(nullptr, Inside(engine).lumaResult());
  EXPECT_EQ(-1, Inside(engine).frameWidth());
  EXPECT_EQ(-1, Inside(engine).frameHeight());
  EXPECT_EQ(-1, Inside(engine).paddedWidth());
  EXPECT_EQ(-1, Inside(engine).paddedHeight());
  EXPECT_EQ(-1, Inside(engine).offsetX());
  EXPECT_EQ(-1, Inside(engine).offsetY());
  EXPECT_EQ(-1, Inside(engine).margin());
  EXPECT_EQ(0.0F, Inside(engine).emphasis());
  EXPECT_FALSE(Inside(engine).emphasisAlpha());
  EXPECT_EQ(1.0F, Inside(engine).gamma());
  EXPECT_FALSE(Inside(engine).gammaActive());
  EXPECT_EQ(1.0F, Inside(engine).outputGain());
  EXPECT_EQ(0.0F, Inside(engine).outputOffset());
  EXPECT_EQ(0.0F, Inside(engine).psfSoftness());
  EXPECT_EQ(2, Inside(engine).edgeMode());
  EXPECT_EQ(1.0F, Inside(engine).aspectX());
  EXPECT_EQ(1.0F, Inside(engine).aspectY());
  EXPECT_EQ(0, engine.GetStatus());
  EXPECT_EQ(0, Inside(engine).wisdomLoaded());
  EXPECT_EQ(4, Inside(engine).engineMode());
  EXPECT_EQ(nullptr, Inside(engine).parallelFor());
  EXPECT_EQ(nullptr, Inside(engine).callbackContext());
}

TEST(DefocusEngine, CountsMode5As4AndUnknownOnesAs1) {
  struct {
    std::int32_t mode, countsAs;
  } const cases[] = {{1, 1}, {2, 2}, {3, 3}, {4, 4}, {5, 4}, {0, 1}, {6, 1}, {-1, 1}};
  for (const auto& one : cases) {
    EXPECT_EQ(one.countsAs, Inside(DefocusEngine(one.mode)).engineMode()) << one.mode;
  }
}

TEST(DefocusEngine, AnswersFalseInMode3AndLeavesItsStatus) {
  DefocusEngine engine(3);
  const Image mask = MakeImage(8, 8, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 1);
  const Image frame = Frame(8, 8);

  EXPECT_FALSE(engine.LoadPsf(mask.get(), 2));
  EXPECT_FALSE(engine.Convolve(frame.get(), 15));
  EXPECT_FALSE(engine.ConvolveChannels(frame.get(), 15));
  EXPECT_EQ(0, engine.GetStatus());
}

TEST(DefocusEngine, CountsTheProcessorsForItsTransforms) {
  lx_test::HeapFaults platform;
  platform.SetProcessorCount(7);
  EXPECT_EQ(7U, Inside(DefocusEngine()).threadCount());
  platform.SetProcessorCount(0);
  EXPECT_EQ(1U, Inside(DefocusEngine()).threadCount());
}

TEST(DefocusEngine, MeasuresItsPlansIfTheVariableExists) {
  lx_test::HeapFaults platform;
  EXPECT_EQ(0, Inside(DefocusEngine()).useWisdom());
  platform.SetEnvironment(true);
  EXPECT_EQ(1, Inside(DefocusEngine()).useWisdom());
}

TEST(DefocusEngine, TakesAnEmptyEnvironmentVariableAsSet) {
  lx::Platform table = lx::SystemPlatform();
  table.isDirectory = [](const char*) { return false; };
  table.makeDirectory = [](const char*) { return false; };
  table.openFile = [](const char*, const char*) -> std::FILE* { return nullptr; };
  const lx::ScopedPlatform scope(&table);
  lx_test::SetVariable("LX_USE_FFTW_WISDOM", "");
  const std::int32_t set = Inside(DefocusEngine()).useWisdom();
  lx_test::RemoveVariable("LX_USE_FFTW_WISDOM");

  EXPECT_EQ(1, set);
  EXPECT_EQ(0, Inside(DefocusEngine()).useWisdom());
}

TEST(DefocusEngine, SaysSoWhereTransformThreadsDoNotStart) {
  lx_test::FftRecorder fft;
  fft.AnswerInit(0);
  DefocusEngine engine;
  EXPECT_EQ(0U, Inside(engine).threadsReady());
  EXPECT_EQ(lx::kStatusNoThreads, engine.GetStatus());

  Build(&engine, 16, 16, 2);

  EXPECT_EQ(0, engine.GetStatus());
  EXPECT_EQ(0, fft.Count("threads"));
}

TEST(EngineSettings, ClampTheEmphasisTo0To500) {
  DefocusEngine engine;
  engine.SetEmphasis(501);
  EXPECT_EQ(500.0F, Inside(engine).emphasis());
  engine.SetEmphasis(-1);
  EXPECT_EQ(0.0F, Inside(engine).emphasis());
  engine.SetEmphasis(std::numeric_limits<float>::quiet_NaN());
  EXPECT_TRUE(std::isnan(Inside(engine).emphasis()));
}

TEST(EngineSettings, KnowEdgeModes1And2) {
  DefocusEngine engine;
  EXPECT_TRUE(engine.SetEdgeMode(1));
  EXPECT_EQ(1, Inside(engine).edgeMode());
  for (const int mode : {0, 3}) {
    EXPECT_FALSE(engine.SetEdgeMode(mode));
    EXPECT_EQ(lx::kStatusEdgeMode, engine.GetStatus());
    EXPECT_EQ(1, Inside(engine).edgeMode());
  }
  EXPECT_TRUE(engine.SetEdgeMode(2));
}

TEST(EngineSettings, ClampGammaGainAndOffset) {
  DefocusEngine engine;
  EXPECT_TRUE(engine.SetGamma(9));
  EXPECT_EQ(5.0F, Inside(engine).gamma());
  EXPECT_TRUE(Inside(engine).gammaActive());
  engine.SetGamma(0.1F);
  EXPECT_EQ(0.2F, Inside(engine).gamma());
  engine.SetGamma(1);
  EXPECT_FALSE(Inside(engine).gammaActive());
  engine.SetOutputGain(6);
  EXPECT_EQ(5.0F, Inside(engine).outputGain());
  engine.SetOutputGain(0);
  EXPECT_EQ(0.2F, Inside(engine).outputGain());
  engine.SetOutputOffset(6);
  EXPECT_EQ(5.0F, Inside(engine).outputOffset());
  engine.SetOutputOffset(-6);
  EXPECT_EQ(-5.0F, Inside(engine).outputOffset());
  engine.SetPsfSoftness(-2);
  EXPECT_EQ(0.0F, Inside(engine).psfSoftness());
}

TEST(EngineSettings, GiveTheAlphaFlagBack) {
  DefocusEngine engine;
  EXPECT_TRUE(engine.SetEmphasisAlpha(true));
  EXPECT_FALSE(engine.SetEmphasisAlpha(false));
}

TEST(EngineSizes, RefuseAFrameOfAnotherSizeUntilThePsfFollows) {
  DefocusEngine engine;
  Build(&engine, 16, 16, 2);
  const Image other = Frame(16, 17);
  const Image before(lx::ImageClone(other.get()));

  EXPECT_FALSE(engine.SetSourceImage(other.get()));
  EXPECT_EQ(lx::kStatusSourceSize, engine.GetStatus());
  EXPECT_FALSE(engine.Convolve(other.get(), 15));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  EXPECT_EQ(0, std::memcmp(other->data, before->data, 16 * 17 * 8));
}

TEST(EngineSizes, RefuseAGridAbove8192AndKeepTheBuffers) {
  DefocusEngine engine;
  Build(&engine, 64, 64, 5);
  const double* grid = Inside(engine).psfSpatial();

  Build(&engine, 9000, 64, 5);

  EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus());
  EXPECT_EQ(nullptr, Inside(engine).psfImage());
  EXPECT_EQ(9000, Inside(engine).frameWidth());
  EXPECT_EQ(64, Inside(engine).frameHeight());
  EXPECT_EQ(128, Inside(engine).paddedWidth());
  EXPECT_EQ(32, Inside(engine).offsetX());
  EXPECT_EQ(grid, Inside(engine).psfSpatial());
}

TEST(EngineSizes, DoNotWriteAnOversizedFrameIntoTheSmallerGrid) {
  DefocusEngine engine;
  Build(&engine, 64, 64, 5);
  Build(&engine, 9000, 64, 5);
  const Image frame = Frame(9000, 64);

  EXPECT_TRUE(engine.SetSourceImage(frame.get()));
  EXPECT_FALSE(engine.Convolve(frame.get(), 15));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  EXPECT_FALSE(engine.ConvolveChannels(frame.get(), 15));
}

TEST(EngineSizes, GoOnWithTheEarlierPsfAfterAnOversizedRadius) {
  DefocusEngine engine;
  DefocusEngine untouched;
  const Image frame = Frame(32, 32);
  const Image out = MakeImage(32, 32, 4, 1);
  const Image expected = MakeImage(32, 32, 4, 1);
  Build(&untouched, 32, 32, 4);
  untouched.SetSourceImage(frame.get());
  untouched.Convolve(expected.get(), 15);

  Build(&engine, 32, 32, 4);
  Build(&engine, 32, 32, 5000);
  EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus());

  EXPECT_TRUE(engine.SetSourceImage(frame.get()));
  EXPECT_TRUE(engine.Convolve(out.get(), 15));
  EXPECT_EQ(0, std::memcmp(out->data, expected->data, 32 * 32 * 8));
}

TEST(EngineSizes, TakeAnyMargin) {
  const Image mask = MakeImage(20, 12, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 1);
  DefocusEngine engine;

  EXPECT_FALSE(engine.LoadPsf(mask.get(), 1 << 30));
  EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus());
  EXPECT_EQ(1 << 30, Inside(engine).margin());
  EXPECT_FALSE(engine.LoadPsf(mask.get(), INT32_MAX));
  EXPECT_TRUE(engine.LoadPsf(mask.get(), -(1 << 30)));
  EXPECT_EQ(-(1 << 30), Inside(engine).margin());
  EXPECT_EQ(32, Inside(engine).paddedWidth());
}

TEST(EngineSizes, RefuseAGridOfOne) {
  const Image mask = MakeImage(1, 1, 1, 0);
  lx_test::Fill<std::uint8_t>(mask, 1);
  DefocusEngine engine;

  EXPECT_FALSE(engine.LoadPsf(mask.get(), 0));
  EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus());
}

TEST(EngineSizes, FollowFromTheLongerPaddedSide) {
  DefocusEngine engine;
  engine.BuildShapePsf(1920, 1080, 1, 100, 100, 0, 6);

  EXPECT_EQ(101, Inside(engine).margin());
  EXPECT_EQ(4096, Inside(engine).paddedWidth());
  EXPECT_EQ(4096, Inside(engine).paddedHeight());
  EXPECT_EQ(1088, Inside(engine).offsetX());
  EXPECT_EQ(1508, Inside(engine).offsetY());
}

TEST(EngineSizes, HalveOddDifferencesTowardZero) {
  DefocusEngine engine;
  Build(&engine, 23, 20, 2);

  EXPECT_EQ(32, Inside(engine).paddedWidth());
  EXPECT_EQ(4, Inside(engine).offsetX());
  EXPECT_EQ(6, Inside(engine).offsetY());
}

TEST(EngineArguments, RefuseNull) {
  DefocusEngine engine;
  Build(&engine, 16, 16, 2);
  const Image frame = Frame(16, 16);

  EXPECT_FALSE(engine.SetSourceImage(nullptr));
  EXPECT_EQ(lx::kStatusSourceSize, engine.GetStatus());
  EXPECT_EQ(nullptr, Inside(engine).sourceImage());
  engine.SetSourceImage(frame.get());
  EXPECT_FALSE(engine.Convolve(nullptr, 15));
  EXPECT_EQ(lx::kStatusDestination, engine.GetStatus());
  EXPECT_FALSE(engine.LoadPsf(nullptr, 2));
  EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  EXPECT_EQ(16, Inside(engine).frameWidth());
}

TEST(EngineArguments, RefuseRecordsWhoseSizeWrapped) {
  const Image mask(lx::ImageCreate(65535, 32769, 2, 0, 1));
  DefocusEngine engine;

  EXPECT_FALSE(engine.LoadPsf(mask.get(), 2));
  EXPECT_EQ(lx::kStatusSizeRange, engine.GetStatus());
}

}  // namespace
