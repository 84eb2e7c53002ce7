// SPDX-License-Identifier: BSD-3-Clause
// The engine that the module has, against what its footprint tells of it.
#include "effect/module_engine.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string>

#include "fftlib/fftlib.h"
#include "tests/support/engine_heap.h"
#include "tests/support/heap_faults.h"
#include "tests/support/images.h"

namespace {

using lx_test::Image;

const lx::Footprint& FootprintOfModule() {
  const std::string marker = lx::kModuleMarker.text.data();
  return *lx::FindFootprint(marker.substr(lx::kEngineMarker.size()));
}

// What a block may have beside what was asked for: a page, for its beginning, and a pointer.
constexpr std::uint64_t kBlockExtra = 4096 + 64;

// One pixel, at the middle; a side of 1 has none, and the pixel is beside it.
Image MakeMask(int width, int height) {
  Image mask = lx_test::MakeImage(width, height, 1, lx::kSampleU8);
  lx_test::Fill<std::uint8_t>(mask, 0);
  const int x = std::min((width + 1) / 2, width - 1);
  const int y = std::min((height + 1) / 2, height - 1);
  lx_test::Samples<std::uint8_t>(mask)[y * width + x] = 255;
  return mask;
}

TEST(ModuleEngine, IsOneOfTheList) {
  const std::string marker = lx::kModuleMarker.text.data();
  ASSERT_EQ(0U, marker.find("GlimmerBlur engine: "));
  EXPECT_NE(nullptr, lx::FindFootprint(marker.substr(20))) << marker;
}

// All that a run may need: a load, and a frame with alpha.
TEST(ModuleEngine, TakesTheBytesThatItsFootprintTells) {
  struct {
    int width;
    int height;
    int margin;
  } const cases[] = {
      // Where sides are powers of two, 128 x 64, 256 x 128, 64 x 128, 64 x 64 and 128 x 64.
      {100, 40, 9},
      {100, 40, 20},
      {40, 100, 9},
      {64, 64, 0},
      {65, 64, 0},
      // Where they are not: odd heights, and few and many blocks of columns.
      {33, 35, 1},
      {3, 301, 2},
      {301, 3, 2},
  };
  for (const auto& [width, height, margin] : cases) {
    lx_test::EngineHeap heap;
    const Image mask = MakeMask(width, height);
    const Image frame = lx_test::MakeImage(width, height, 4, lx::kSampleU16);
    lx_test::FillNoise(frame, 3);
    const std::uint64_t before = heap.Bytes();
    const std::unique_ptr<lx::DefocusEngine> engine(lx::MakeModuleEngine());

    ASSERT_TRUE(engine->LoadPsf(mask.get(), margin));
    ASSERT_TRUE(engine->SetSourceImage(frame.get()));
    ASSERT_TRUE(engine->Convolve(frame.get(), 15));

    const std::uint64_t taken = heap.Bytes() - before;
    const lx::Footprint& footprint = FootprintOfModule();
    const std::uint64_t told =
        footprint.bytesAt({width, height}, footprint.gridFor(width, height, margin));
    EXPECT_LE(told, taken) << footprint.name << " " << width << " " << height << " " << margin;
    EXPECT_GE(told + 8 * kBlockExtra, taken)
        << footprint.name << " " << width << " " << height << " " << margin;
  }
}

// The first grid that a load asks for, which it does not get; the largest of several at once; 0 if
// it asks for none.
std::uint64_t FirstGridBytes(const Image& mask, int margin, std::int32_t* status) {
  lx_test::HeapFaults faults;
  lx_test::FftRecorder fft;
  const std::unique_ptr<lx::DefocusEngine> engine(lx::MakeModuleEngine());
  fft.RefuseAllocation(1);
  faults.RefuseAll();
  EXPECT_FALSE(engine->LoadPsf(mask.get(), margin));
  *status = engine->GetStatus();
  for (const std::string& entry : fft.Log()) {
    if (entry.starts_with("allocate ")) {
      return std::stoull(entry.substr(9));
    }
  }
  return faults.LargestRequest();
}

// By hand, of what the back-end asks for first: one real grid of the transform library; the
// spectrum or the scratch of 16 ways, by blocks of 8 columns, 128 bytes a row, and rows by eight;
// one complex grid.
std::uint64_t FirstBytesOf(const lx::Footprint& footprint, lx::Size frame,
                           const lx::GridSides& grid) {
  const auto width = static_cast<std::uint64_t>(grid.width);
  const auto height = static_cast<std::uint64_t>(grid.height);
  constexpr std::uint64_t kGridsKept = 5;
  if (footprint.name == "exact") {
    return width * height * sizeof(double);
  }
  if (footprint.name == "fast") {
    const std::uint64_t blocks = (width / 2 + 1 + 7) / 8;
    const std::uint64_t way = std::max(4 * blocks * 8 * 128, height * 128);
    return std::max(blocks * height * 128, 16 * way);
  }
  return footprint.bytesAt(frame, grid) / kGridsKept;
}

// Every side with every other one, so that no two sides can be exchanged unseen.
TEST(ModuleEngine, HasTheGridThatItsFootprintTells) {
  const lx::Footprint& footprint = FootprintOfModule();
  for (const int width : {1, 2, 3, 63, 64, 65, 500, 4096, 8150}) {
    for (const int height : {1, 5, 62, 63, 500, 4100}) {
      const Image mask = MakeMask(width, height);
      for (const int margin : {-1, 0, 1, 2, 21, 22, 500, 2047, 2048, 5000}) {
        std::int32_t status = 0;
        const std::uint64_t asked = FirstGridBytes(mask, margin, &status);

        // A pixel beside the middle is reached for.
        const bool makesRoom = footprint.name == "fast" && std::min(width, height) == 1;
        const lx::GridSides grid =
            footprint.gridFor(width, height, makesRoom ? std::max(margin, 1) : margin);
        const auto where = testing::Message() << footprint.name << " " << width << " x " << height
                                              << ", margin " << margin;
        if (!lx::IsAllowedGrid(grid, footprint.largestSide)) {
          EXPECT_EQ(lx::kStatusSizeRange, status) << where;
          continue;
        }
        EXPECT_EQ(lx::kStatusNoMemory, status) << where;
        const std::uint64_t told = FirstBytesOf(footprint, {width, height}, grid);
        EXPECT_LE(told, asked) << where;
        EXPECT_GE(told + kBlockExtra, asked) << where;
      }
    }
  }
}

}  // namespace
