// SPDX-License-Identifier: BSD-3-Clause
// The grids of the back-end fast: what they are, what they take, and that they are large enough.
#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <vector>

#include "baselib/platform/platform.h"
#include "baselib/utils/heap.h"
#include "fftlib/backends/fast/fast_backend.h"
#include "fftlib/fftlib.h"
#include "tests/fftlib/backends/fast/frame_case.h"
#include "tests/fftlib/backends/fast/plain_frame.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace {

using lx::FastFootprint;
using lx::GridSides;
using lx_test::Image;
using lx_test::MakeFastEngine;
using lx_test::Samples;

using Mask = std::vector<std::uint8_t>;

Mask EmptyMask(int width, int height) { return Mask(static_cast<std::size_t>(width) * height, 0); }

// A 16-bit frame of noise through a mask, against plain sums, at some pixels of it.
void ExpectPlainSums(int width, int height, const Mask& mask, int margin, std::int32_t edge) {
  const auto engine = MakeFastEngine();
  const Image source = lx_test::NoiseImage(width, height, 4, lx::kSampleU16, 21);
  const Image dest = lx_test::NoiseImage(width, height, 4, lx::kSampleU16, 22);
  ASSERT_TRUE(lx_test::LoadMask(engine.get(), mask, width, height, margin));
  ASSERT_TRUE(engine->SetSourceImage(source.get()));
  ASSERT_TRUE(engine->SetEdgeMode(edge));

  ASSERT_TRUE(engine->Convolve(dest.get(), 15));

  lx::Look look;
  look.edgeMode = edge;
  const lx_test::PlainFrame plain(source, mask, look);
  constexpr std::size_t kPixels = 400;
  const std::size_t count = static_cast<std::size_t>(width) * height;
  for (std::size_t i = 0; i < count; i += 1 + count / kPixels) {
    const auto values = plain.At(static_cast<int>(i % width), static_cast<int>(i / width));
    for (std::size_t c = 0; c < 4; ++c) {
      const auto expected = static_cast<double>(std::clamp(values[c], 0.0L, 1.0L)) * 65535.0;
      ASSERT_NEAR(expected, Samples<std::uint16_t>(dest)[4 * i + c], 0.5 + 1e-6)
          << width << " x " << height << ", margin " << margin << ", edge " << edge << ", pixel "
          << i << ", channel " << c;
    }
  }
}

// Frame and both margins in each side, the width an even number; at most an eighth more where a
// product of small primes is so near.
TEST(FastGrid, JustHoldsFrameAndMargins) {
  struct {
    lx::Size frame;
    int margin;
    GridSides least;
  } const cases[] = {
      {{1920, 1080}, 101, {2122, 1282}},
      {{1920, 1080}, 0, {1920, 1080}},
      {{720, 576}, 21, {762, 618}},
      {{1, 1}, 0, {2, 2}},
      {{1, 5}, -3, {2, 5}},
      {{33, 35}, 1, {36, 37}},
      {{3840, 2160}, 21, {3882, 2202}},
  };
  for (const auto& [frame, margin, least] : cases) {
    const GridSides grid = FastFootprint::GridFor(frame.width, frame.height, margin);
    EXPECT_LE(least.width, grid.width);
    EXPECT_LE(least.height, grid.height);
    EXPECT_GE(least.width + least.width / 8 + 2, grid.width);
    EXPECT_GE(least.height + least.height / 8 + 2, grid.height);
    EXPECT_EQ(0, grid.width % 2);
  }
}

TEST(FastGrid, EndsAtTheLongestSide) {
  EXPECT_EQ((GridSides{32768, 32768}), FastFootprint::GridFor(32766, 32766, 1));
  EXPECT_EQ((GridSides{32768, 32768}), FastFootprint::GridFor(32700, 32767, 0));
  for (const GridSides& tooLong :
       {FastFootprint::GridFor(32767, 9, 1), FastFootprint::GridFor(9, 32767, 1),
        FastFootprint::GridFor(2147483647, 9, 2147483647)}) {
    EXPECT_FALSE(lx::IsAllowedGrid(tooLong, FastFootprint::kLargestSide))
        << tooLong.width << " x " << tooLong.height;
  }
}

// Adds up what is asked of the heap.
class CountedHeap {
 public:
  CountedHeap() : table_(lx::SystemPlatform()), scope_(&table_) {
    bytes_ = 0;
    blocks_ = 0;
    table_.allocate = [](std::size_t size) {
      bytes_ += size;
      ++blocks_;
      return lx::SystemPlatform().allocate(size);
    };
    // What every aligned block has beside what was asked for.
    lx::lx_aligned_free(lx::lx_aligned_malloc(1, -1, true), true);
    extra_ = bytes_ - 1;
    Clear();
  }
  CountedHeap(const CountedHeap&) = delete;
  CountedHeap& operator=(const CountedHeap&) = delete;

  void Clear() { bytes_ = blocks_ = 0; }
  std::uint64_t Bytes() const { return bytes_ - blocks_ * extra_; }

 private:
  inline static std::uint64_t bytes_ = 0;
  inline static std::uint64_t blocks_ = 0;

  std::uint64_t extra_ = 0;
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

TEST(FastGrid, TakesTheBytesThatAreToldToTheByte) {
  struct {
    int width;
    int height;
    int margin;
  } const cases[] = {{1, 1, 0},  {1, 9, 1},     {9, 1, 1},     {33, 35, 4},
                     {64, 3, 2}, {130, 61, 20}, {65, 128, 30}, {300, 200, 10}};
  for (const auto& [width, height, margin] : cases) {
    for (const float emphasis : {0.0F, 20.0F, 300.0F}) {
      Mask mask = EmptyMask(width, height);
      mask[mask.size() / 2] = 255;
      const Image maskImage = lx_test::MakeImage(width, height, 1, lx::kSampleU8);
      std::copy(mask.begin(), mask.end(), Samples<std::uint8_t>(maskImage));
      const Image frame = lx_test::NoiseImage(width, height, 4, lx::kSampleU16, 5);
      lx::FastBackend backend;
      const GridSides grid = backend.GridOf(*maskImage, margin);
      lx::DefocusEngine engine(std::make_unique<lx::FastBackend>());
      engine.SetEmphasis(emphasis);
      engine.SetEmphasisAlpha(true);
      CountedHeap heap;

      ASSERT_TRUE(engine.LoadPsf(maskImage.get(), margin));
      ASSERT_TRUE(engine.SetSourceImage(frame.get()));
      ASSERT_TRUE(engine.Convolve(frame.get(), 15));

      EXPECT_EQ(FastFootprint::BytesAt({width, height}, grid), heap.Bytes())
          << width << " x " << height << ", margin " << margin << ", emphasis " << emphasis;
      // And nothing more for the next ones.
      heap.Clear();
      ASSERT_TRUE(engine.LoadPsf(maskImage.get(), margin));
      ASSERT_TRUE(engine.Convolve(frame.get(), 15));
      EXPECT_EQ(0U, heap.Bytes());
    }
  }
}

// A mask that is not zero anywhere, with no margin at all.
TEST(FastGrid, MakesRoomForAMaskThatReachesBeyondItsMargin) {
  for (const lx::Size frame : {lx::Size{24, 15}, {15, 24}, {1, 30}, {30, 1}, {7, 7}, {16, 16}}) {
    const Image noise = lx_test::NoiseImage(frame.width, frame.height, 1, lx::kSampleU8, 31);
    const auto* bytes = Samples<std::uint8_t>(noise);
    const Mask mask(bytes, bytes + SampleCount(noise));
    for (const std::int32_t edge : {lx::kEdgeZero, lx::kEdgeReplicate}) {
      ExpectPlainSums(frame.width, frame.height, mask, 0, edge);
    }
  }
}

// One pixel of a mask in a corner, and in the middle of each side: a frame moved that far.
TEST(FastGrid, MakesRoomForAMaskOnOneSideAlone) {
  constexpr int kWidth = 21;
  constexpr int kHeight = 12;
  for (const int y : {0, kHeight / 2, kHeight - 1}) {
    for (const int x : {0, kWidth / 2, kWidth - 1}) {
      Mask mask = EmptyMask(kWidth, kHeight);
      mask[static_cast<std::size_t>(y) * kWidth + x] = 1;
      for (const std::int32_t edge : {lx::kEdgeZero, lx::kEdgeReplicate}) {
        ExpectPlainSums(kWidth, kHeight, mask, 0, edge);
      }
    }
  }
}

Mask CrossMask(int width, int height, int reach) {
  Mask mask = EmptyMask(width, height);
  const int middleX = (width + 1) / 2;
  const int middleY = (height + 1) / 2;
  for (int x = std::max(middleX - reach, 0); x <= std::min(middleX + reach, width - 1); ++x) {
    mask[static_cast<std::size_t>(middleY) * width + x] = static_cast<std::uint8_t>(1 + x % 200);
  }
  for (int y = std::max(middleY - reach, 0); y <= std::min(middleY + reach, height - 1); ++y) {
    mask[static_cast<std::size_t>(y) * width + middleX] = static_cast<std::uint8_t>(1 + y % 190);
  }
  return mask;
}

TEST(FastGrid, BlursFramesWithSidesAboveThoseOfPowersOfTwo) {
  for (const std::int32_t edge : {lx::kEdgeZero, lx::kEdgeReplicate}) {
    ExpectPlainSums(9000, 4, CrossMask(9000, 4, 50), 51, edge);
    ExpectPlainSums(4, 9000, CrossMask(4, 9000, 50), 51, edge);
  }
}

TEST(FastGrid, BlursFramesUpToTheLongestSideAndRefusesLongerOnes) {
  ExpectPlainSums(32766, 2, CrossMask(32766, 2, 1), 1, lx::kEdgeReplicate);
  ExpectPlainSums(2, 32766, CrossMask(2, 32766, 1), 1, lx::kEdgeReplicate);
  const auto engine = MakeFastEngine();
  for (const lx::Size frame : {lx::Size{32767, 2}, {2, 32767}}) {
    EXPECT_FALSE(lx_test::LoadMask(engine.get(), CrossMask(frame.width, frame.height, 1),
                                   frame.width, frame.height, 1));
    EXPECT_EQ(lx::kStatusSizeRange, engine->GetStatus());
  }
}

// Exact divides by the mask's sum, and a sample that is not a number is 0.
TEST(FastGrid, GivesBlackForAnEmptyMaskAsExactDoes) {
  for (const float emphasis : {0.0F, 20.0F, 200.0F}) {
    lx::DefocusEngine exact;
    const auto fast = MakeFastEngine();
    for (lx::DefocusEngine* engine : {&exact, fast.get()}) {
      const Image frame = lx_test::NoiseImage(20, 12, 4, lx::kSampleU16, 8);
      engine->SetEmphasis(emphasis);
      ASSERT_TRUE(lx_test::LoadMask(engine, EmptyMask(20, 12), 20, 12, 2));
      ASSERT_TRUE(engine->SetSourceImage(frame.get()));
      ASSERT_TRUE(engine->Convolve(frame.get(), 15));
      const auto* samples = Samples<std::uint16_t>(frame);
      EXPECT_EQ(SampleCount(frame), std::count(samples, samples + SampleCount(frame), 0))
          << emphasis;
    }
  }
}

}  // namespace
