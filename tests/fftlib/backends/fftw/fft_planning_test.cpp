// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include "baselib/platform/platform.h"
#include "fftlib/backends/fftw/fft_grids.h"
#include "fftlib/backends/fftw/fft_library.h"
#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"
#include "tests/support/platform_recorder.h"

namespace {

using lx::DefocusEngine;
using lx_test::FftRecorder;
using lx_test::Image;
using lx_test::Inside;
using lx_test::MakeImage;
using Log = std::vector<std::string>;

void Build(DefocusEngine* engine, int side, float radius) {
  engine->BuildShapePsf(side, side, 1, radius, radius, 0, 6);
}

bool RunFrame(DefocusEngine* engine, int side, std::uint32_t mask = 15) {
  const Image frame = MakeImage(side, side, 4, 1);
  lx_test::FillNoise(frame, 1);
  engine->SetSourceImage(frame.get());
  return engine->Convolve(frame.get(), mask);
}

class Planning : public testing::Test {
 protected:
  Planning() { platform.SetProcessorCount(3); }

  lx_test::HeapFaults platform;
  FftRecorder fft;
};

// 24 + 2 * 3 = 30: a grid of 32, 8192 bytes; a spectrum of 32 x 17 complex, 8704 bytes.
TEST_F(Planning, MakesAndTransformsThePsfInThisOrder) {
  DefocusEngine engine;
  fft.Clear();

  Build(&engine, 24, 2);

  EXPECT_EQ((Log{"allocate 8192", "allocate 8704", "threads 3", "forward 32 flags 64", "execute"}),
            fft.Log());
}

TEST_F(Planning, AllocatesAndPlansAtTheFirstFrameOnly) {
  DefocusEngine engine;
  Build(&engine, 24, 2);
  fft.Clear();

  RunFrame(&engine, 24);

  EXPECT_EQ((Log{"allocate 8192", "allocate 8704", "threads 3", "forward 32 flags 64", "threads 3",
                 "inverse 32 flags 64", "execute", "execute", "allocate 8192", "execute", "execute",
                 "allocate 8192", "execute", "execute", "allocate 8192", "execute", "execute"}),
            fft.Log());
  fft.Clear();
  RunFrame(&engine, 24);
  EXPECT_EQ(Log(8, "execute"), fft.Log());
}

TEST_F(Planning, TransformsThreePlanesWithoutAlpha) {
  DefocusEngine engine;
  Build(&engine, 24, 2);
  RunFrame(&engine, 24, 7);
  fft.Clear();

  RunFrame(&engine, 24, 7);

  EXPECT_EQ(Log(6, "execute"), fft.Log());
}

TEST_F(Planning, KeepsPlansAndGridsAtTheSamePaddedSize) {
  DefocusEngine engine;
  Build(&engine, 24, 2);
  RunFrame(&engine, 24);
  const double* grid = Inside(engine).psfSpatial();
  fft.Clear();

  Build(&engine, 24, 3);  // another PSF
  Build(&engine, 20, 2);  // another frame

  EXPECT_EQ(Log(2, "execute"), fft.Log());
  EXPECT_EQ(grid, Inside(engine).psfSpatial());
}

TEST_F(Planning, FreesEverythingBeforeAnotherSizeIsAllocated) {
  DefocusEngine engine;
  Build(&engine, 24, 2);
  RunFrame(&engine, 24);
  fft.Clear();

  Build(&engine, 24, 6);

  Log expected(3, "destroy");
  expected.insert(expected.end(), 7, "release");
  for (const char* call :
       {"allocate 32768", "allocate 33792", "threads 3", "forward 64 flags 64", "execute"}) {
    expected.emplace_back(call);
  }
  EXPECT_EQ(expected, fft.Log());
}

TEST_F(Planning, EndsPlansThenGridsThenThreads) {
  auto engine = std::make_unique<DefocusEngine>();
  Build(engine.get(), 24, 2);
  RunFrame(engine.get(), 24);
  fft.Clear();

  engine.reset();

  Log expected(3, "destroy");
  expected.insert(expected.end(), 7, "release");
  expected.emplace_back("cleanup");
  EXPECT_EQ(expected, fft.Log());
}

// Records what a constructor asks for, in one list with the transform library's calls.
std::vector<std::string> asked;

TEST(EngineConstruction, StartsThreadsThenCountsProcessorsThenLooksForTheVariable) {
  lx::FftCalls calls = lx::LibraryFftCalls();
  calls.initThreads = [] {
    asked.emplace_back("threads");
    return 1;
  };
  lx::Platform platform = lx::SystemPlatform();
  platform.processorCount = [] {
    asked.emplace_back("processors");
    return 1;
  };
  platform.hasEnvironmentVariable = [](const char* name) {
    asked.emplace_back(name);
    return false;
  };
  const lx::ScopedFftCalls scopedCalls(&calls);
  const lx::ScopedPlatform scopedPlatform(&platform);
  asked.clear();

  const DefocusEngine engine;

  EXPECT_EQ((Log{"threads", "processors", "LX_USE_FFTW_WISDOM"}), asked);
}

TEST_F(Planning, SharesThreadsAmongEngines) {
  auto first = std::make_unique<DefocusEngine>();
  auto second = std::make_unique<DefocusEngine>();
  EXPECT_EQ(1, fft.Count("init"));
  EXPECT_EQ(Inside(*first).threadsReady(), Inside(*second).threadsReady());

  first.reset();
  EXPECT_EQ(0, fft.Count("cleanup"));
  second.reset();
  EXPECT_EQ(1, fft.Count("cleanup"));
}

TEST_F(Planning, MeasuresWithoutTouchingThePsf) {
  DefocusEngine estimated;
  Build(&estimated, 24, 2);
  platform.SetEnvironment(true);
  DefocusEngine measured;
  fft.OverwriteArrays();
  fft.Clear();

  Build(&measured, 24, 2);

  EXPECT_EQ(1, fft.Count("forward 32 flags 0"));
  for (int i = 0; i < 32 * 32; ++i) {
    ASSERT_EQ(Inside(estimated).psfSpatial()[i], Inside(measured).psfSpatial()[i]) << i;
  }
}

TEST_F(Planning, SaysSoWithoutAPlan) {
  for (const int nth : {1, 2, 3}) {  // of the PSF, forward, inverse
    DefocusEngine engine;
    fft.RefusePlan(nth);

    Build(&engine, 24, 2);
    const bool ran = RunFrame(&engine, 24);

    EXPECT_FALSE(ran);
    EXPECT_EQ(nth == 1 ? lx::kStatusNotLoaded : lx::kStatusNoPlan, engine.GetStatus()) << nth;
  }
}

TEST_F(Planning, LeavesTheNewSizeAndNoGridWhereMemoryRunsOut) {
  for (const int nth : {1, 2}) {
    DefocusEngine engine;
    Build(&engine, 24, 2);
    fft.RefuseAllocation(nth);

    Build(&engine, 24, 6);

    EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
    EXPECT_EQ(64, Inside(engine).paddedWidth());
    EXPECT_EQ(Inside(engine).psfMask(), Inside(engine).psfImage());
    EXPECT_FALSE(RunFrame(&engine, 24));
    EXPECT_EQ(lx::kStatusNotLoaded, engine.GetStatus());
  }
}

TEST_F(Planning, LeavesTheFrameWhereAWorkOrResultGridHasNoMemory) {
  for (const int nth : {1, 2, 3, 4, 5}) {
    DefocusEngine engine;
    Build(&engine, 24, 2);
    const Image source = MakeImage(24, 24, 4, 1);
    lx_test::FillNoise(source, 1);
    const Image dest = MakeImage(24, 24, 4, 1);
    lx_test::Fill<std::uint16_t>(dest, 77);
    engine.SetSourceImage(source.get());
    fft.RefuseAllocation(nth);

    EXPECT_FALSE(engine.Convolve(dest.get(), 15)) << nth;
    EXPECT_EQ(lx::kStatusNoMemory, engine.GetStatus());
    EXPECT_EQ(77, lx_test::Samples<std::uint16_t>(dest)[0]);
    EXPECT_TRUE(engine.Convolve(dest.get(), 15)) << nth;
  }
}

TEST_F(Planning, RefusesTooFewBitsBeforeItAllocates) {
  DefocusEngine engine;
  Build(&engine, 24, 2);
  fft.Clear();

  EXPECT_FALSE(RunFrame(&engine, 24, 3));

  EXPECT_EQ(lx::kStatusChannels, engine.GetStatus());
  EXPECT_TRUE(fft.Log().empty());
}

// The sizes of blocks for frames that huge pages are advised for. Nobody writes to these blocks, so
// they cost no memory.
Log AdvisedSizes(std::int32_t side) {
  lx_test::PlatformRecorder platform;
  lx::FftLibrary library;
  lx::FftGrids grids;
  for (int frame = 0; frame < 2; ++frame) {
    EXPECT_EQ(lx::kStatusOk, grids.PrepareWork(side, false, &library));
    EXPECT_EQ(lx::kStatusOk, lx::FftGrids::PrepareResult(side, &grids.lumaResult));
  }
  Log sizes;
  constexpr std::string_view kCall = "advise huge pages ";
  for (const std::string& entry : platform.Log()) {
    if (entry.starts_with(kCall)) {
      sizes.push_back(entry.substr(kCall.size()));
    }
  }
  return sizes;
}

TEST(LargePages, AreAdvisedOnceForEachBlockOfAGridOf1024AndMore) {
  // 1024 * 1024 doubles, 1024 * 513 pairs of them, and doubles again.
  EXPECT_EQ((Log{"8388608", "8404992", "8388608"}), AdvisedSizes(1024));
  EXPECT_EQ((Log{"134217728", "134283264", "134217728"}), AdvisedSizes(4096));
}

TEST(LargePages, AreNotAdvisedForGridsBelow1024) { EXPECT_EQ(Log{}, AdvisedSizes(512)); }

}  // namespace
