// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <iterator>
#include <limits>
#include <memory>
#include <mutex>
#include <set>
#include <string>
#include <utility>
#include <vector>

#include "baselib/platform/platform.h"
#include "effect/glimmer_blur.h"
#include "effect/module_engine.h"
#include "tests/effect/recording_engine.h"
#include "tests/support/engine_inside.h"
#include "tests/support/heap_faults.h"

namespace {

using lx::GlimmerBlur;
using lx::LXImage;
using lx_test::Inside;
using lx_test::Record;
using Log = std::vector<std::string>;

constexpr int kWidth = 200;
constexpr int kHeight = 100;
constexpr double kNan = std::numeric_limits<double>::quiet_NaN();

class RenderDriver : public testing::Test {
 public:
  RenderDriver() {
    Record() = {};
    Record().alive = 1;
    Size(kWidth, kHeight);
    effect.shape.value = 1;
    effect.radiusX.value = 0.1;
    effect.radiusY.value = 0.05;
    effect.sides.value = 5;
  }

  void Size(int width, int height) {
    source.reset(new LXImage(width, height, 0, nullptr, 0));
    output.reset(new LXImage(width, height, 0, nullptr, 0));
    for (int i = 0; i < width * height * 4; ++i) {
      source->data[i] = static_cast<std::uint16_t>(i % 32768);
    }
    effect.sourcePort.image = source.get();
    effect.outputPort.image = output.get();
  }

  // Renders and gives the calls on the engine.
  Log Render() {
    Record().calls.clear();
    effect.RenderFrame();
    return Record().calls;
  }

  // Renders and gives the build, or nothing for a PSF that was kept.
  std::string Build() {
    for (const std::string& call : Render()) {
      if (call.starts_with("Build")) {
        return call;
      }
    }
    return "";
  }

  GlimmerBlur effect;
  std::unique_ptr<LXImage> source;
  std::unique_ptr<LXImage> output;
};

TEST_F(RenderDriver, DrivesTheEngineInThisOrder) {
  const Log kept{"SetParallelFor",      "SetCancelQuery", "SetPixelAspect(1,1)",
                 "SetSourceImage(4,1)", "SetEmphasis(0)", "SetEmphasisAlpha(0)",
                 "Convolve(15)"};
  Log built = kept;
  built.insert(built.begin() + 3, "BuildShapePsf(200,100,1,10,10,0,6)");

  EXPECT_EQ(built, Render());
  EXPECT_EQ(kept, Render());
}

TEST_F(RenderDriver, HandsTheResultOut) {
  Render();
  EXPECT_EQ(1000, output->data[0]);
  EXPECT_EQ(1000, output->data[kWidth * kHeight * 4 - 1]);
}

TEST_F(RenderDriver, LeavesACopyOfTheSourceWhereTheEngineFailsAndDoesNotTryAgain) {
  Record().runDoesNothing = true;
  EXPECT_NE("", Build());

  for (int i = 0; i < kWidth * kHeight * 4; ++i) {
    ASSERT_EQ(source->data[i], output->data[i]);
  }
  EXPECT_EQ("", Build());
}

TEST_F(RenderDriver, CountsRadiiAsDiametersOfTheWidthForBothAxes) {
  effect.shape.value = 2;
  EXPECT_EQ("BuildShapePsf(200,100,1,10,5,0,6)", Build());
  effect.shape.value = 3;
  effect.rotation.value = 12.5;
  EXPECT_EQ("BuildShapePsf(200,100,2,10,5,12.5,5)", Build());
  effect.match.value = true;
  EXPECT_EQ("BuildShapePsf(200,100,2,10,10,12.5,5)", Build());
}

TEST_F(RenderDriver, RaisesRadiiToHalfAPixel) {
  effect.shape.value = 2;
  effect.radiusX.value = 0;
  effect.radiusY.value = -5;
  EXPECT_EQ("BuildShapePsf(200,100,1,0.5,0.5,0,6)", Build());
}

TEST_F(RenderDriver, RebuildsEachFrameForWhatIsNotANumber) {
  effect.radiusX.value = kNan;
  EXPECT_EQ("BuildShapePsf(200,100,1,nan,nan,0,6)", Build());
  EXPECT_NE("", Build());
  effect.radiusX.value = 0.1;
  effect.rotation.value = kNan;
  EXPECT_NE("", Build());
  EXPECT_NE("", Build());
}

TEST_F(RenderDriver, BuildsAtTheFirstFrameEvenIfAllIsZero) {
  effect.radiusX.value = 0;
  effect.sides.value = 0;
  effect.shape.value = 0;
  EXPECT_EQ("", Build());  // an unknown shape builds nothing
  effect.shape.value = 1;
  EXPECT_NE("", Build());
}

TEST_F(RenderDriver, RebuildsForEachValueOfTheKey) {
  effect.shape.value = 2;
  Build();
  const auto changes = std::vector<std::pair<const char*, void (*)(RenderDriver*)>>{
      {"rotation", [](RenderDriver* t) { t->effect.rotation.value += 1; }},
      {"radiusX", [](RenderDriver* t) { t->effect.radiusX.value += 0.01; }},
      {"radiusY", [](RenderDriver* t) { t->effect.radiusY.value += 0.01; }},
      {"sides", [](RenderDriver* t) { t->effect.sides.value += 1; }},
      {"aspectX", [](RenderDriver* t) { t->output->aspectX += 0.5; }},
      {"aspectY", [](RenderDriver* t) { t->output->aspectY += 0.5; }},
      {"shape", [](RenderDriver* t) { t->effect.shape.value = 1; }},
      {"width", [](RenderDriver* t) { t->Size(kWidth + 1, kHeight); }},
      {"height", [](RenderDriver* t) { t->Size(kWidth + 1, kHeight + 1); }},
      {"psfValid", [](RenderDriver* t) { t->effect.psfValid = false; }}};
  for (const auto& [name, change] : changes) {
    change(this);
    EXPECT_NE("", Build()) << name;
    EXPECT_EQ("", Build()) << name;
  }
}

TEST_F(RenderDriver, KeepsThePsfForEmphasisAndForRadiiThatTheShapeDoesNotUse) {
  Build();
  effect.emphasis.value = 40;
  effect.emphAlpha.value = true;
  effect.precision.value = true;
  effect.radiusY.value = 0.9;  // a circle has none
  EXPECT_EQ("", Build());
  effect.shape.value = 3;
  effect.match.value = true;
  Build();
  effect.radiusY.value = 0.1;
  EXPECT_EQ("", Build());
  effect.shape.value = 2;
  Build();
  effect.match.value = false;
  EXPECT_EQ("", Build());
}

TEST_F(RenderDriver, KeepsThePsfForAnySumOfStepsBelowAHundredth) {
  Build();
  for (int i = 0; i < 50; ++i) {
    effect.rotation.value += 0.009;
    effect.radiusX.value += 0.00009;  // 0.009 pixels
    EXPECT_EQ("", Build()) << i;
  }
}

TEST_F(RenderDriver, RebuildsAtAStepOfAHundredth) {
  Build();
  effect.rotation.value = 0.01;
  EXPECT_NE("", Build());
  for (int i = 1; i < 20; ++i) {
    effect.rotation.value = 0.01 + i / 64.0;
    EXPECT_NE("", Build()) << i;
  }
}

// A step of the value, in the unit of the key: pixels for the radii, of which 0.01 is one, and
// degrees for the rotation.
TEST_F(RenderDriver, KeepsThePsfJustBelowAHundredthAndRebuildsJustAboveIt) {
  struct Case {
    const char* name;
    void (*step)(RenderDriver* test, double by);
  };
  constexpr double kPixel = 0.01;
  for (const Case& c :
       {Case{"rotation", [](RenderDriver*t, double by) { t->effect.rotation.value += by; }},
        Case{"radiusX", [](RenderDriver*t, double by) { t->effect.radiusX.value += by * kPixel; }},
        Case{"radiusY", [](RenderDriver*t, double by) { t->effect.radiusY.value += by * kPixel; }},
        Case{"aspectX", [](RenderDriver*t, double by) { t->output->aspectX += by; }},
        Case{"aspectY", [](RenderDriver*t, double by) { t->output->aspectY += by; }}}) {
    for (const double sign : {1.0, -1.0}) {
      effect.shape.value = 2;
      effect.psfValid = false;
      Build();

      c.step(this, sign * 0.00999);
      EXPECT_EQ("", Build()) << c.name << sign;
      c.step(this, sign * 0.01001);
      EXPECT_NE("", Build()) << c.name << sign;
    }
  }
}

TEST_F(RenderDriver, RebuildsAConstantRotationThatSinglePrecisionCannotHold) {
  effect.rotation.value = 300000.013;
  Build();
  EXPECT_NE("", Build());
}

TEST_F(RenderDriver, CutsTheImagePsfFromTheSpreadPictureEveryFrame) {
  LXImage spread(kWidth, kHeight, 0, nullptr, 0);
  std::fill_n(spread.data, kWidth * kHeight * 4, std::uint16_t{5});
  effect.spreadPort.image = &spread;
  effect.shape.value = 4;
  effect.center.x = 0.25;
  effect.center.y = 0.75;
  effect.radiusPSF1.value = 0.3;
  effect.radiusPSF2.value = 0.1;

  EXPECT_EQ("BuildImagePsf(200,100,50,75,10,20)", Build());
  EXPECT_EQ("BuildImagePsf(200,100,50,75,10,20)", Build());
  effect.radiusPSF2.value = 0.3;
  EXPECT_EQ("BuildImagePsf(200,100,50,75,30,0)", Build());
  effect.center.x = 1e30;
  effect.center.y = kNan;
  EXPECT_EQ("BuildImagePsf(200,100,-2147483648,-2147483648,30,0)", Build());
}

// Half a pixel is added, and what is behind the point is dropped towards 0: 0.253 of 200 is
// 50.6, 0.252 is 50.4, -0.003 is -0.6 and -0.01 is -2.
TEST_F(RenderDriver, RoundsTheCentreOfTheImagePsfByHalfAPixel) {
  effect.spreadPort.image = source.get();
  effect.shape.value = 4;
  effect.radiusPSF2.value = 0.1;
  struct Case {
    double x;
    double y;
    const char* centre;
  };
  for (const Case& c : {Case{0.253, 0.506, "51,51"}, Case{0.252, 0.504, "50,50"},
                        Case{-0.003, -0.006, "0,0"}, Case{-0.01, -0.02, "-1,-1"}}) {
    effect.center.x = c.x;
    effect.center.y = c.y;
    EXPECT_EQ(std::string("BuildImagePsf(200,100,") + c.centre + ",0,10)", Build());
  }
}

TEST_F(RenderDriver, BuildsNothingWithoutASpreadPictureAndRendersAllTheSame) {
  effect.shape.value = 4;
  const Log calls = Render();
  EXPECT_EQ("Convolve(15)", calls.back());
  EXPECT_EQ(7U, calls.size());
  EXPECT_TRUE(effect.psfValid);
}

TEST_F(RenderDriver, BuildsNothingForAnUnknownShape) {
  for (const int shape : {0, 5, -1}) {
    effect.shape.value = shape;
    const Log calls = Render();
    EXPECT_EQ(7U, calls.size()) << shape;
    EXPECT_TRUE(effect.psfValid);
  }
}

TEST_F(RenderDriver, TakesAlphaFromTheSourceWhereItIsOff) {
  effect.alphaEnabled = false;

  const Log calls = Render();

  EXPECT_EQ("Convolve(7)", calls.back());
  EXPECT_EQ(calls.end(), std::find(calls.begin(), calls.end(), "SetEmphasisAlpha(0)"));
  EXPECT_EQ(1000, output->data[0]);
  EXPECT_EQ(source->data[7], output->data[7]);
}

TEST_F(RenderDriver, ReturnsAtOnceWithoutAnEngine) {
  delete effect.engine;
  effect.engine = nullptr;
  output->data[0] = 77;
  effect.outputPort.image->aspectX = 3;

  EXPECT_TRUE(Render().empty());

  EXPECT_EQ(77, output->data[0]);
  EXPECT_EQ(0.0F, effect.psfKey.aspectX);
  EXPECT_FALSE(effect.psfValid);
}

TEST_F(RenderDriver, ReturnsBeforeTheEngineWithoutMemory) {
  for (const int nth : {1, 2, 3, 4}) {  // samples and record of both images
    lx_test::HeapFaults heap;
    heap.Refuse(nth);
    output->data[0] = 77;

    EXPECT_TRUE(Render().empty()) << nth;

    EXPECT_EQ(77, output->data[0]);
    EXPECT_FALSE(effect.psfValid);
    EXPECT_EQ(0, heap.Alive());
  }
}

TEST_F(RenderDriver, ReturnsBeforeTheEngineForAnImageThatNoRecordHolds) {
  Size(65536, 1);
  EXPECT_TRUE(Render().empty());
}

TEST_F(RenderDriver, FreesItsImages) {
  lx_test::HeapFaults heap;
  Render();
  EXPECT_EQ(0, heap.Alive());
}

TEST_F(RenderDriver, FreesTheSourceThenTheDestinationThenThePsfPicture) {
  static std::vector<const void*> freed;
  freed.clear();
  lx::Platform table = lx::SystemPlatform();
  table.release = [](void* block) {
    freed.push_back(block);
    lx::SystemPlatform().release(block);
  };
  const lx::ScopedPlatform scope(&table);
  effect.spreadPort.image = source.get();
  effect.shape.value = 4;

  Render();

  const std::vector<const void*> records{Record().source, Record().destination, Record().psf};
  std::vector<const void*> freedRecords;
  std::copy_if(freed.begin(), freed.end(), std::back_inserter(freedRecords),
               [&](const void* block) {
                 return std::find(records.begin(), records.end(), block) != records.end();
               });
  EXPECT_EQ(records, freedRecords);
  EXPECT_NE(nullptr, Record().psf);
}

TEST_F(RenderDriver, RunsPassesWithTheWordThatItWasGiven) {
  Render();
  static std::mutex mutex;  // the pass runs on every way
  static std::multiset<std::int32_t> seen;
  static lx::DefocusEngine* seenEngine;
  seen.clear();
  const auto pass = [](lx::DefocusEngine* engine, std::int32_t first, std::int32_t last) {
    const std::scoped_lock hold(mutex);
    seenEngine = engine;
    for (std::int32_t row = first; row <= last; ++row) {
      seen.insert(row);
    }
  };
  auto* far = reinterpret_cast<lx::DefocusEngine*>(std::uintptr_t{0x7123456789A0});

  Inside(*effect.engine).parallelFor()(Inside(*effect.engine).callbackContext(), pass, 4, far);

  EXPECT_EQ((std::multiset<std::int32_t>{0, 1, 2, 3}), seen);
  EXPECT_EQ(far, seenEngine);
  EXPECT_EQ(0, Inside(*effect.engine).cancelQuery()(Inside(*effect.engine).callbackContext()));
}

TEST(Effect, OwnsOneEngineOfTheKindThatTheModuleIsOf) {
  const std::string marker = lx::kModuleMarker.text.data();
  Record() = {};
  {
    const GlimmerBlur effect;
    EXPECT_EQ(1, Record().alive);
    EXPECT_EQ(marker.substr(lx::kEngineMarker.size()), Inside(*effect.engine).backendName());
  }
  EXPECT_EQ(0, Record().alive);
}

}  // namespace
