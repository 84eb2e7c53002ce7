// SPDX-License-Identifier: BSD-3-Clause
// Frames of the back-end fast depend on the aperture that was loaded last, and on nothing before.
#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstring>
#include <memory>
#include <random>
#include <vector>

#include "baselib/platform/platform.h"
#include "fftlib/backends/fast/fast_backend.h"
#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/fast/frame_case.h"
#include "tests/support/divided_passes.h"
#include "tests/support/engine_inside.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx_test::FrameCase;
using lx_test::Image;
using lx_test::MakeFastEngine;
using lx_test::SameSamples;

FrameCase Polygon(int width, int height, float radius, int sides) {
  FrameCase c{};
  c.seed = 3;
  c.width = width;
  c.height = height;
  c.shape = 2;
  c.radiusX = c.radiusY = radius;
  c.sides = sides;
  c.aspectX = c.aspectY = 1.0F;
  c.edgeMode = lx::kEdgeReplicate;
  c.sampleType = lx::kSampleU16;
  c.channels = 4;
  c.emphasis = 20.0F;
  c.gamma = c.gain = 1.0F;
  return c;
}

lx::GridSides GridOf(const lx::DefocusEngine& engine) {
  const lx_test::Inside inside(engine);
  return {inside.paddedWidth(), inside.paddedHeight()};
}

TEST(FastResidue, ASecondApertureOnTheSameGridLeavesNothingOfTheFirst) {
  const FrameCase large = Polygon(60, 40, 12.0F, 9);
  FrameCase small = large;
  small.radiusX = 11.5F;
  small.sides = 3;
  const auto engine = MakeFastEngine();

  (void)RenderCase(engine.get(), large);
  const lx::GridSides grid = GridOf(*engine);
  const Image second = RenderCase(engine.get(), small);

  EXPECT_EQ(grid, GridOf(*engine));
  EXPECT_TRUE(SameSamples(RenderCase(MakeFastEngine().get(), small), second));
}

// 60 x 40 and 62 x 42 come to the same sides with margins of 13 and 12.
TEST(FastResidue, AnotherFrameOnTheSameGridLeavesNothingOfTheFirst) {
  const FrameCase first = Polygon(60, 40, 12.0F, 9);
  const FrameCase second = Polygon(62, 42, 11.0F, 5);
  const auto engine = MakeFastEngine();

  (void)RenderCase(engine.get(), first);
  const lx::GridSides grid = GridOf(*engine);
  const Image frame = RenderCase(engine.get(), second);

  EXPECT_EQ(grid, GridOf(*engine));
  EXPECT_TRUE(SameSamples(RenderCase(MakeFastEngine().get(), second), frame));
}

TEST(FastResidue, AnyOrderOfAperturesAndFramesGivesThoseOfFreshEngines) {
  constexpr float kEmphases[] = {0.0F, 20.0F, 75.0F, 200.0F};
  std::mt19937 random(5);
  for (int sequence = 0; sequence < 8; ++sequence) {
    const auto engine = MakeFastEngine();
    const std::uint32_t sizes = random();
    for (int step = 0; step < 12; ++step) {
      FrameCase c = lx_test::RandomCase(random(), 60, kEmphases);
      // Two sizes and two radii, in turns: the same grids come again.
      const std::uint32_t turn = random();
      c.width = turn % 2 == 0 ? 40 : 23 + static_cast<int>(sizes % 40);
      c.height = turn % 2 == 0 ? 31 : 17;
      c.radiusX = (turn & 2U) != 0 ? 9.0F : 4.0F;
      c.radiusY = c.radiusX * 0.6F;
      const Image frame = RenderCase(engine.get(), c);
      ASSERT_TRUE(SameSamples(RenderCase(MakeFastEngine().get(), c), frame))
          << "sequence " << sequence << ", step " << step << ", " << c;
      // Other frames through the same aperture.
      FrameCase next = c;
      next.seed += 1000;
      next.emphasis = kEmphases[random() % 4];
      next.stored = !c.stored;
      const Image second = RenderLoaded(engine.get(), next);
      const auto fresh = MakeFastEngine();
      LoadAperture(fresh.get(), c);
      ASSERT_TRUE(SameSamples(RenderLoaded(fresh.get(), next), second))
          << "sequence " << sequence << ", step " << step << ", " << next;
    }
  }
}

TEST(FastResidue, ALoadThatFailsLeavesNoApertureToRunWith) {
  const FrameCase before = Polygon(60, 40, 12.0F, 9);
  const FrameCase after = Polygon(61, 40, 12.0F, 9);
  const Image mask = lx_test::NoiseImage(61, 40, 1, lx::kSampleU8, 9);
  for (int n = 1;; ++n) {
    const auto engine = MakeFastEngine();
    (void)RenderCase(engine.get(), before);
    bool loaded = false;
    {
      lx_test::HeapFaults faults;
      faults.Refuse(n);
      loaded = engine->LoadPsf(mask.get(), 13);
    }
    if (loaded) {
      EXPECT_LT(4, n) << "nothing has been refused";
      break;
    }
    EXPECT_EQ(lx::kStatusNoMemory, engine->GetStatus()) << n;
    const Image source = MakeSource(after);
    Image dest = MakeSource(after);
    (void)engine->SetSourceImage(source.get());
    EXPECT_FALSE(engine->Convolve(dest.get(), 15)) << n;
    EXPECT_EQ(lx::kStatusNotLoaded, engine->GetStatus()) << n;
    EXPECT_TRUE(SameSamples(source, dest)) << n;
    // And nothing stands in the way of the next one.
    EXPECT_TRUE(
        SameSamples(RenderCase(MakeFastEngine().get(), before), RenderCase(engine.get(), before)))
        << n;
  }
}

TEST(FastResidue, ALoadThatFailedIsWholeWhereItIsRepeatedAtItsSize) {
  const FrameCase frame = Polygon(61, 40, 12.0F, 9);
  const auto fresh = MakeFastEngine();
  LoadAperture(fresh.get(), frame);
  const Image expected = RenderLoaded(fresh.get(), frame);
  int n = 0;
  bool isLoaded = false;
  while (!isLoaded) {
    ++n;
    const auto engine = MakeFastEngine();
    {
      lx_test::HeapFaults faults;
      faults.Refuse(n);
      LoadAperture(engine.get(), frame);
      isLoaded = engine->GetStatus() == lx::kStatusOk;
    }
    LoadAperture(engine.get(), frame);
    EXPECT_TRUE(SameSamples(expected, RenderLoaded(engine.get(), frame))) << n;
  }
  EXPECT_LT(4, n) << "nothing has been refused";
}

TEST(FastResidue, ABackendThatCouldNotLoadSaysSo) {
  const Image mask = lx_test::NoiseImage(20, 14, 1, lx::kSampleU8, 9);
  const Image larger = lx_test::NoiseImage(40, 14, 1, lx::kSampleU8, 9);
  lx::Rows rows(nullptr, [](void*, std::int32_t) {});
  lx::FastBackend backend;
  ASSERT_EQ(lx::kStatusOk, backend.Load(*mask, lx::PlaceFrame({20, 14}, {40, 28}), &rows));
  ASSERT_TRUE(backend.IsLoaded());
  lx_test::HeapFaults faults;
  faults.RefuseAll();

  EXPECT_EQ(lx::kStatusNoMemory, backend.Load(*larger, lx::PlaceFrame({40, 14}, {80, 28}), &rows));

  EXPECT_FALSE(backend.IsLoaded());
}

TEST(FastResidue, ALoadThatIsCancelledLeavesNothingForTheNext) {
  const FrameCase c = Polygon(60, 40, 12.0F, 9);
  const Image expected = RenderCase(MakeFastEngine().get(), c);
  for (const int stopAt : {0, 1, 7, 19, 20, 39}) {
    const auto engine = MakeFastEngine();
    lx_test::PollCounter canceller(stopAt);
    canceller.Attach(engine.get());
    LoadAperture(engine.get(), c);
    EXPECT_EQ(lx::kStatusOk, engine->GetStatus()) << stopAt;
    ASSERT_LT(stopAt, canceller.polls);
    lx_test::PollCounter none;
    none.Attach(engine.get());

    EXPECT_TRUE(SameSamples(expected, RenderCase(engine.get(), c))) << stopAt;
  }
}

// Frames in bands of magnitude ask in other passes than others do.
TEST(FastResidue, AFrameThatIsCancelledLeavesNothingForTheNext) {
  FrameCase c = Polygon(40, 21, 6.0F, 5);
  c.content = 3;
  for (const float emphasis : {0.0F, 200.0F}) {
    c.emphasis = emphasis;
    c.emphasisAlpha = true;
    const auto engine = MakeFastEngine();
    lx_test::PollCounter counter;
    counter.Attach(engine.get());
    const Image expected = RenderCase(engine.get(), c);
    counter.polls = 0;
    (void)RenderLoaded(engine.get(), c);
    const int polls = counter.polls;
    ASSERT_LE(5 * c.height, polls);
    for (int stopAt = 0; stopAt < polls; stopAt += 3) {
      lx_test::PollCounter canceller(stopAt, stopAt % 2 == 0);
      canceller.Attach(engine.get());
      (void)RenderLoaded(engine.get(), c);
      ASSERT_EQ(lx::kStatusOk, engine->GetStatus()) << emphasis << ", " << stopAt;
      lx_test::PollCounter none;
      none.Attach(engine.get());
      ASSERT_TRUE(SameSamples(expected, RenderLoaded(engine.get(), c)))
          << emphasis << ", " << stopAt;
    }
  }
}

// A heap whose blocks are full of what is not a number.
class DirtyHeap {
 public:
  DirtyHeap() : table_(lx::SystemPlatform()), scope_(&table_) {
    table_.allocate = [](std::size_t size) {
      void* block = lx::SystemPlatform().allocate(size);
      return block != nullptr ? std::memset(block, 0xFF, size) : nullptr;
    };
  }
  DirtyHeap(const DirtyHeap&) = delete;
  DirtyHeap& operator=(const DirtyHeap&) = delete;

 private:
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

TEST(FastResidue, WhatItsBlocksHeldBeforeReachesNoFrame) {
  constexpr float kEmphases[] = {0.0F, 20.0F, 200.0F};
  for (std::uint32_t seed = 100; seed < 160; ++seed) {
    const FrameCase c = lx_test::RandomCase(seed, 50, kEmphases);
    const Image expected = RenderCase(MakeFastEngine().get(), c);
    const DirtyHeap heap;
    ASSERT_TRUE(SameSamples(expected, RenderCase(MakeFastEngine().get(), c))) << c;
  }
}

}  // namespace
