// SPDX-License-Identifier: BSD-3-Clause
// What the program foresees of a frame, against the effect itself at work on it.
#include "host/looks/foresight.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <map>
#include <string>
#include <vector>

#include "effect/glimmer_blur.h"
#include "effect/module_engine.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/page.h"
#include "host/module/frame_checks.h"
#include "tests/support/engine_heap.h"
#include "tests/support/looks.h"

namespace {

using glimmerhost::Foresight;
using glimmerhost::Page;
using glimmerhost::TypedLook;
using lx::GridSides;
using Values = std::map<std::string, glimmerhost::Value>;

const lx::Footprint& EngineOfModule() {
  const std::string marker = lx::kModuleMarker.text.data();
  return *lx::FindFootprint(marker.substr(lx::kEngineMarker.size()));
}

struct Look {
  std::string shape;
  std::string radius;
  std::string radiusY;  // of the image shape, the other radius
  int width;
  int height;
};

Values StoreValues(const Look& look) {
  TypedLook typed;
  typed["shape"] = look.shape;
  if (look.shape == "image") {
    typed["radius-psf1"] = look.radius;
    typed["radius-psf2"] = look.radiusY;
  } else {
    typed["radius-x"] = look.radius;
    typed["radius-y"] = look.radiusY;
  }
  return lx_test::StillValuesOf(Page::Load(PAGE), typed, look.width, look.height);
}

// The effect as the module's adapter would set it.
class Effect {
 public:
  Effect(const Values& values, int width, int height)
      : source_(width, height, 0, nullptr, 0), output_(width, height, 0, nullptr, 0) {
    const auto number = [&](const char* key) { return std::get<double>(values.at(key)); };
    effect_.shape.value = std::get<int>(values.at("PRM_Shape")) + 1;
    effect_.match.value = std::get<bool>(values.at("PRM_Match"));
    effect_.radiusX.value = number("PRM_RadiusX");
    effect_.radiusY.value = number("PRM_RadiusY");
    effect_.radiusPSF1.value = number("PRM_RadiusPSF1");
    effect_.radiusPSF2.value = number("PRM_RadiusPSF2");
    effect_.center.x = effect_.center.y = 0.5;
    effect_.sides.value = 6;
    effect_.alphaEnabled = true;
    for (int i = 0; i < width * height * 4; ++i) {
      source_.data[i] = static_cast<std::uint16_t>(std::int64_t{i} * 7919 % 32768);
    }
    effect_.sourcePort.image = &source_;
    effect_.spreadPort.image = &source_;
    effect_.outputPort.image = &output_;
  }

  void Render() { effect_.RenderFrame(); }
  std::int32_t Status() const { return effect_.engine->GetStatus(); }

 private:
  lx::LXImage source_;
  lx::LXImage output_;
  lx::GlimmerBlur effect_;
};

TEST(Foresight, TellsWhatTheEffectTakesForEveryShape) {
  const Look looks[] = {
      {"circle", "3px", "25px", 50, 30},          {"ellipse", "3px", "25px", 50, 30},
      {"ellipse", "25px", "3px", 50, 30},         {"polygon", "3px", "20px", 50, 30},
      {"image", "3px", "25px", 50, 30},           {"image", "25px", "3px", 50, 30},
      {"image", "29px", "29px", 66, 40},    // 66 + 2 * 31 is 128: the soft edge has a pixel,
      {"image", "30px", "30px", 66, 40},    // and with a pixel more there is no room
      {"circle", "0px", "0px", 60, 30},     // half a pixel at least: 60 + 2 * 2
      {"circle", "0px", "0px", 61, 30},     // 61 + 2 * 2 is too much for 64
      {"circle", "15px", "0px", 96, 30},    // 96 + 2 * 16 is 128,
      {"circle", "15.1px", "0px", 96, 30},  // and rounded up too much
      {"circle", "15px", "0px", 30, 96},          {"circle", "14px", "0px", 30, 97},
      {"circle", "15.00000001px", "0px", 96, 30},  // as a float, 15
  };
  for (const Look& look : looks) {
    const Values values = StoreValues(look);
    lx_test::EngineHeap heap;
    Effect effect(values, look.width, look.height);
    const std::uint64_t before = heap.Bytes();

    effect.Render();

    // The mask is left to the engine too, one byte a pixel, and each block has up to a page more.
    const std::uint64_t taken = heap.Bytes() - before;
    const std::uint64_t mask = static_cast<std::uint64_t>(look.width) * look.height;
    constexpr std::uint64_t kBlocks = 9;
    constexpr std::uint64_t kBlockExtra = 4096 + 64;
    const Foresight told = glimmerhost::Foresee(EngineOfModule(), values, look.width, look.height);
    const auto where = testing::Message() << look.shape << " " << look.radius << " " << look.radiusY
                                          << " " << look.width << " x " << look.height;
    ASSERT_EQ(lx::kStatusOk, effect.Status()) << where;
    EXPECT_LE(told.effectBytes, taken) << where;
    EXPECT_GE(told.effectBytes + mask + kBlocks * kBlockExtra, taken) << where;
  }
}

TEST(Foresight, TellsWhichFramesTheEffectRefuses) {
  const Look looks[] = {
      {"circle", "20px", "", 8150, 10},          // 8150 + 2 * 21 is 8192
      {"circle", "20px", "", 8151, 10},          // refused
      {"circle", "20.01px", "", 8150, 10},       // refused
      {"ellipse", "2px", "2047.5px", 4095, 10},  // refused
      {"circle", "20px", "", 40, 8150},         {"circle", "20px", "", 40, 8151},  // refused
  };
  std::vector<bool> refused;
  const bool isFast = EngineOfModule().name == "fast";
  for (Look look : looks) {
    // The same strips, as much longer as its grids are.
    constexpr int kMore = 32768 - 8192;
    if (isFast) {
      (look.width > look.height ? look.width : look.height) += kMore;
    }
    const Values values = StoreValues(look);
    lx_test::EngineHeap heap;
    Effect effect(values, look.width, look.height);
    heap.Fft().RefuseAllocation(1);  // nobody waits for squares of that size
    const std::uint64_t before = heap.Bytes();

    effect.Render();

    // The engine draws its mask before it asks for grids.
    constexpr std::uint64_t kMoreThanAMask = 1U << 21U;
    const bool asked = heap.Bytes() - before > kMoreThanAMask;
    const Foresight told = glimmerhost::Foresee(EngineOfModule(), values, look.width, look.height);
    EXPECT_EQ(asked, told.grid != GridSides{})
        << look.shape << " " << look.radius << " " << look.width << " x " << look.height;
    EXPECT_EQ(asked, told.effectBytes != 0);
    refused.push_back(!asked);
  }
  EXPECT_EQ((std::vector<bool>{false, true, true, true, false, true}), refused);
}

// By hand, of the frame that the documents speak of.
TEST(Foresight, TellsGridAndBytesOfEachEngine) {
  const Values values = StoreValues({"circle", "100px", "", 1920, 1080});
  struct {
    const char* engine;
    GridSides grid;
    std::uint64_t bytes;
  } const cases[] = {
      // 1081 columns in 136 blocks of 8, whose rows take 128 bytes: the PSF's 1296 rows, and four
      // planes' 1081; 16 pieces of four times eight rows; twiddles, couples and rows of sources;
      // and two bits a pixel.
      {"fast",
       {2160, 1296},
       std::uint64_t{136} * 128 * (1296 + 4 * 1081) + 16 * 4 * 136 * 8 * 128 + 61128 +
           std::uint64_t{2} * 1080 * 30 * 8},
      // 5 * 4096 * 4096 * 8 and 2 * 4096 * 2049 * 16
      {"exact", {4096, 4096}, 939655168},
      // 5 * 4096 * 2048 * 16
      {"double", {4096, 2048}, 671088640},
      {"single", {4096, 2048}, 335544320},
  };
  for (const auto& [engine, grid, bytes] : cases) {
    const Foresight told = glimmerhost::Foresee(*lx::FindFootprint(engine), values, 1920, 1080);
    EXPECT_EQ(grid, told.grid) << engine;
    EXPECT_EQ(bytes, told.effectBytes) << engine;
    EXPECT_EQ(100.0, told.radius) << engine;
  }
  EXPECT_EQ(4U, lx::kFootprints.size()) << "without its line above";
}

TEST(NextGrid, IsThatOfTheFirstRadiusWhichTheGridCannotTake) {
  using glimmerhost::GridStep;
  struct {
    const char* engine;
    GridSides grid;
    int radius;
    GridSides next;
  } const cases[] = {
      {"fast", {2160, 1296}, 107, {2160, 1344}},   {"fast", {1944, 1120}, 11, {2000, 1120}},
      {"exact", {2048, 2048}, 63, {4096, 4096}},   {"exact", {4096, 4096}, 1087, {8192, 8192}},
      {"exact", {8192, 8192}, 3135, {0, 0}},       {"double", {2048, 2048}, 63, {4096, 2048}},
      {"double", {4096, 2048}, 483, {4096, 4096}}, {"single", {4096, 4096}, 1087, {8192, 4096}},
  };
  for (const auto& [engine, grid, radius, next] : cases) {
    const GridStep step = glimmerhost::NextGrid(*lx::FindFootprint(engine), grid, 1920, 1080);
    EXPECT_EQ(radius, step.radius) << engine << " " << grid.width << " x " << grid.height;
    EXPECT_EQ(next, step.next) << engine << " " << grid.width << " x " << grid.height;
  }
}

}  // namespace
