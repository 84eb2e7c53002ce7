// SPDX-License-Identifier: BSD-3-Clause
#include "hostframe/render_adapter.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <cstdlib>
#include <memory>
#include <new>
#include <string>
#include <thread>
#include <utility>
#include <vector>

#include "hostframe/class_ctor.h"
#include "hostframe/ui_adapter.h"
#include "tests/support/engine_inside.h"
#include "tests/support/fake_host.h"
#include "tests/support/fft_recorder.h"
#include "tests/support/heap_faults.h"

namespace {

using allplugins::cGlimmerBlurRender;
using lx_test::cPtr;
using lx_test::FakeImage;
using lx_test::Inside;
using Log = std::vector<std::string>;

constexpr int kWidth = 20;
constexpr int kHeight = 14;

const Log kParameterReads = {
    "getList(PRM_Shape)",        "getBool(PRM_Match,0)",     "getFloat(PRM_RadiusX,0)",
    "getFloat(PRM_RadiusY,0)",   "getFloat(PRM_Sides,0)",    "getFloat(PRM_Rotation,0)",
    "getFloat(PRM_Emphasis,0)",  "getBool(PRM_EmphAlpha,0)", "getBool(PRM_Precision,0)",
    "getFloat(PRM_Center_X,0)",  "getFloat(PRM_Center_Y,0)", "getFloat(PRM_RadiusPSF1,0)",
    "getFloat(PRM_RadiusPSF2,0)"};

Log operator+(Log a, const Log& b) {
  a.insert(a.end(), b.begin(), b.end());
  return a;
}

class RenderAdapter : public testing::Test {
 public:
  RenderAdapter()
      : inputs(new lx_test::FakeInputs(&host.log)),
        target(new lx_test::FakeTarget(&host.log)),
        params(new lx_test::FakeParams(&host.log)) {
    inputs->main = cPtr<lx_test::FakeSource>(new lx_test::FakeSource(&host.log, "source"));
    inputs->main->image = Image("in", 1);
    target->image = Image("out", 0);
    params->numbers["PRM_RadiusX"] = 0.2;
  }

  cPtr<FakeImage> Image(const std::string& name, int seed, int width = kWidth,
                        int height = kHeight) {
    cPtr<FakeImage> image(new FakeImage(&host.log, name, width, height));
    for (std::size_t i = 0; i < image->samples.size(); ++i) {
      image->samples[i] = static_cast<std::uint16_t>(seed * (i * 7919 + 13));
    }
    return image;
  }

  void GiveSpread() {
    inputs->spread = cPtr<lx_test::FakeSource>(new lx_test::FakeSource(&host.log, "spread"));
    inputs->spread->image = Image("spreadImage", 3);
  }

  // A connected instance, with the log clear.
  cPtr<cGlimmerBlurRender> Connected() {
    cPtr<cGlimmerBlurRender> render(new cGlimmerBlurRender);
    render->setTarget(target);
    render->setInputs(inputs);
    render->setParams(params);
    host.log.calls.clear();
    return render;
  }

  lx_test::FakeHost host;
  cPtr<lx_test::FakeInputs> inputs;
  cPtr<lx_test::FakeTarget> target;
  cPtr<lx_test::FakeParams> params;
};

TEST_F(RenderAdapter, CallsTheHostInThisOrder) {
  const auto render = Connected();

  render->renderFrame(5, 1, 2);

  EXPECT_EQ((kParameterReads + Log{"target.format", "format.descriptor", "source.frame(5,d,3)",
                                   "~descriptor", "target.outputFrame(3)", "in.size", "in.buffer",
                                   "in.size", "target.format", "format.pixelAspect", "in.size",
                                   "in.buffer", "out.size", "out.buffer"}),
            host.log.calls);
}

TEST_F(RenderAdapter, AsksTheSecondClipForItsFrame) {
  GiveSpread();
  const auto render = Connected();

  render->renderFrame(5, 0, 0);

  EXPECT_EQ(
      (kParameterReads + Log{"target.format", "format.descriptor", "source.frame(5,d,3)",
                             "~descriptor", "target.outputFrame(3)", "in.size", "in.buffer",
                             "in.size", "target.format", "format.pixelAspect", "target.format",
                             "format.descriptor", "spread.frame(5,d,3)", "~descriptor",
                             "spreadImage.size", "spreadImage.buffer", "out.size", "out.buffer"}),
      host.log.calls);
}

TEST_F(RenderAdapter, ReadsNothingWhileItIsBeingConnected) {
  const cPtr<cGlimmerBlurRender> render(new cGlimmerBlurRender);

  render->setTarget(target);
  render->setInputs(inputs);
  render->setParams(params);
  render->preRender(1, 2);

  EXPECT_EQ((Log{"inputs.mainInput", "inputs.namedInput(PRM_Spread)"}), host.log.calls);
  EXPECT_EQ(2, params->Count());
  EXPECT_EQ(2, target->Count());
  EXPECT_EQ(1, inputs->Count());
}

// An argument that is made in the call is the parameter itself and lives to the end of the
// whole expression, so what the call leaves is looked at inside of it.
TEST_F(RenderAdapter, LetsGoOfItsInputsBeforeItReturns) {
  const cPtr<cGlimmerBlurRender> render(new cGlimmerBlurRender);
  auto* given = new lx_test::FakeInputs(&host.log);
  given->notesItsEnd = true;

  const Log atReturn = (render->setInputs(cPtr<qplugin::iQpluginInputs>(given)), host.log.calls);

  EXPECT_EQ((Log{"inputs.mainInput", "inputs.namedInput(PRM_Spread)", "~inputs"}), atReturn);
}

TEST_F(RenderAdapter, HoldsTargetAndStoreOnceWhenItReturns) {
  const cPtr<cGlimmerBlurRender> render(new cGlimmerBlurRender);
  auto* to = new lx_test::FakeTarget(&host.log);
  auto* store = new lx_test::FakeParams(&host.log);

  const int holdsTarget = (render->setTarget(cPtr<qplugin::iQpluginTarget>(to)), to->Count());
  const int holdsStore = (render->setParams(cPtr<qplugin::iQpluginParams>(store)), store->Count());

  EXPECT_EQ(1, holdsTarget);
  EXPECT_EQ(1, holdsStore);
}

TEST_F(RenderAdapter, KeepsItsClipsForNullInputs) {
  const auto render = Connected();

  render->setInputs({});

  EXPECT_EQ(inputs->main.Object(), render->sourceClip.Object());
}

TEST_F(RenderAdapter, LeavesThePortsFrameNumbersToTheRender) {
  const cPtr<cGlimmerBlurRender> render(new cGlimmerBlurRender);
  render->effect.sourcePort.frame = 11;
  render->effect.spreadPort.frame = 12;

  render->setTarget(target);

  EXPECT_EQ(11, render->effect.sourcePort.frame);
  EXPECT_EQ(12, render->effect.spreadPort.frame);
  EXPECT_EQ(&render->target, render->effect.sourcePort.targetHandle);
  render->setTarget({});
  EXPECT_FALSE(render->target);
}

TEST_F(RenderAdapter, ReadsParametersAlsoWithoutSourceOrTarget) {
  for (const int missing : {0, 1}) {
    const auto render = Connected();
    if (missing == 0) {
      render->sourceClip.Reset();
    } else {
      render->setTarget({});
    }
    host.log.calls.clear();

    render->renderFrame(5, 0, 0);

    EXPECT_EQ(kParameterReads, host.log.calls);
  }
}

TEST_F(RenderAdapter, DoesNothingWithoutAStore) {
  const auto render = Connected();
  render->setParams({});
  host.log.calls.clear();
  render->effect.shape.value = 3;

  render->renderFrame(5, 0, 0);

  EXPECT_TRUE(host.log.calls.empty());
  EXPECT_EQ(3, render->effect.shape.value);
}

TEST_F(RenderAdapter, GivesUpWithoutAFormat) {
  target->hasFormat = false;
  const auto render = Connected();
  const auto before = target->image->samples;

  render->renderFrame(5, 0, 0);

  EXPECT_EQ((kParameterReads + Log{"target.format"}), host.log.calls);
  EXPECT_EQ(before, target->image->samples);
}

TEST_F(RenderAdapter, TakesTheStoresValues) {
  params->numbers = {{"PRM_Shape", 2},       {"PRM_Match", 1},      {"PRM_RadiusX", 0.25},
                     {"PRM_RadiusY", 0.125}, {"PRM_Sides", 5.9},    {"PRM_Rotation", 33},
                     {"PRM_Emphasis", 0.5},  {"PRM_EmphAlpha", 1},  {"PRM_Precision", 1},
                     {"PRM_Center_X", 0.1},  {"PRM_Center_Y", 0.2}, {"PRM_RadiusPSF1", 0.3},
                     {"PRM_RadiusPSF2", 0.4}};
  const auto render = Connected();

  render->renderFrame(1, 0, 0);

  const lx::GlimmerBlur& effect = render->effect;
  EXPECT_EQ(3, effect.shape.value);
  EXPECT_TRUE(effect.match.value);
  EXPECT_EQ(0.25, effect.radiusX.value);
  EXPECT_EQ(0.125, effect.radiusY.value);
  EXPECT_EQ(5, effect.sides.value);
  EXPECT_EQ(33, effect.rotation.value);
  EXPECT_EQ(0.5, effect.emphasis.value);
  EXPECT_TRUE(effect.emphAlpha.value);
  EXPECT_TRUE(effect.precision.value);
  EXPECT_EQ(0.1, effect.center.x);
  EXPECT_EQ(0.2, effect.center.y);
  EXPECT_EQ(0.3, effect.radiusPSF1.value);
  EXPECT_EQ(0.4, effect.radiusPSF2.value);
  EXPECT_EQ(render.Object(), effect.renderOwner);
}

TEST_F(RenderAdapter, StartsAtTheFirstShape) {
  const auto render = Connected();
  render->renderFrame(1, 0, 0);
  EXPECT_EQ(1, render->effect.shape.value);
}

TEST_F(RenderAdapter, HandsThePixelAspectOn) {
  target->aspect = {16, 15};
  const auto render = Connected();

  render->renderFrame(1, 0, 0);

  EXPECT_EQ(16.0F, render->effect.aspectNum);
  EXPECT_EQ(15.0F, render->effect.aspectDen);
  EXPECT_EQ(static_cast<float>(16.0 / 15.0), render->effect.psfKey.aspectX);
  EXPECT_EQ(1.0F, render->effect.psfKey.aspectY);
}

// The output image stays in its port where there is no source frame, and can be looked at.
// As a float the ratio would be 1.06666672...
TEST_F(RenderAdapter, DividesThePixelAspectInDoublePrecision) {
  inputs->main->image.Reset();
  target->aspect = {16, 15};
  const auto render = Connected();

  render->renderFrame(1, 0, 0);

  const std::unique_ptr<lx::LXImage> kept(std::exchange(render->effect.outputPort.image, nullptr));
  ASSERT_NE(nullptr, kept);
  EXPECT_EQ(1.0666666666666667, kept->aspectX);
  EXPECT_EQ(1.0, kept->aspectY);
}

TEST_F(RenderAdapter, CountsTimeFromTheFrameBefore) {
  const auto render = Connected();

  render->renderFrame(8, 0, 0);
  EXPECT_EQ(7.0, render->effect.frameTime);
  render->renderFrame(-3, 0, 0);

  EXPECT_EQ(-4.0, render->effect.frameTime);
}

TEST_F(RenderAdapter, PointsBothPortsAtTheirClipsInEveryFrame) {
  GiveSpread();
  const auto render = Connected();
  render->effect.sourcePort.clip = nullptr;
  render->effect.spreadPort.clip = nullptr;

  render->renderFrame(1, 0, 0);

  EXPECT_EQ(&render->sourceClip, render->effect.sourcePort.clip);
  EXPECT_EQ(&render->spreadClip, render->effect.spreadPort.clip);
}

TEST_F(RenderAdapter, SurvivesAnAspectOverZero) {
  target->aspect = {1, 0};
  const auto render = Connected();

  render->renderFrame(1, 0, 0);

  EXPECT_TRUE(std::isinf(render->effect.psfKey.aspectX));
}

TEST_F(RenderAdapter, LeavesNoImageInItsPorts) {
  const auto render = Connected();

  render->renderFrame(7, 0, 0);

  EXPECT_EQ(nullptr, render->effect.sourcePort.image);
  EXPECT_EQ(nullptr, render->effect.spreadPort.image);
  EXPECT_EQ(nullptr, render->effect.outputPort.image);
  EXPECT_EQ(7, render->effect.sourcePort.frame);
  EXPECT_EQ(7, render->effect.spreadPort.frame);
  EXPECT_EQ(7, render->effect.outputPort.frame);
  EXPECT_EQ(&render->sourceClip, render->effect.spreadPort.clip);
}

TEST_F(RenderAdapter, LeavesAnOutputFrameOfAnotherSizeAlone) {
  target->image = Image("out", 5, kWidth - 3, kHeight);
  const auto before = target->image->samples;
  const auto render = Connected();

  render->renderFrame(1, 0, 0);

  EXPECT_EQ(before, target->image->samples);
  EXPECT_EQ(nullptr, render->effect.outputPort.image);
}

TEST_F(RenderAdapter, WritesNothingWithoutASourceFrameAndKeepsTheOutputImage) {
  inputs->main->image.Reset();
  const auto before = target->image->samples;
  const auto render = Connected();

  render->renderFrame(1, 0, 0);

  EXPECT_EQ(before, target->image->samples);
  lx::LXImage* kept = render->effect.outputPort.image;
  ASSERT_NE(nullptr, kept);
  EXPECT_EQ(0, kept->width);
  render->renderFrame(2, 0, 0);
  EXPECT_NE(kept, render->effect.outputPort.image);  // overwritten, not freed
  delete kept;
  delete render->effect.outputPort.image;
  render->effect.outputPort.image = nullptr;
}

TEST_F(RenderAdapter, LetsGoOfTheFramesAtTheEnd) {
  // Only the adapter holds the frames then, and it lets go of the output first.
  const auto render = Connected();
  struct Giver final : qplugin::iQpluginSource, quantel::cRefCount {
    explicit Giver(RenderAdapter* test) : self(test) {}
    cPtr<qplugin::iQpluginImage> frame(int, cPtr<qplugin::iQpluginDescriptor>, int) override {
      return self->Image("in", 1);
    }
    RenderAdapter* self;
  };
  render->sourceClip = cPtr<qplugin::iQpluginSource>(new Giver(this));
  host.log.calls.clear();
  lx_test::CallLog* log = &host.log;
  target->image = Image("out", 0);
  struct Taker final : qplugin::iQpluginTarget, quantel::cRefCount {
    explicit Taker(RenderAdapter* test) : self(test) {}
    cPtr<qplugin::iQpluginImage> outputFrame(int) override { return self->Image("out", 0); }
    cPtr<qplugin::iQpluginFormat> format() override {
      return cPtr<qplugin::iQpluginFormat>(new lx_test::FakeFormat(&self->host.log, {1, 1}));
    }
    RenderAdapter* self;
  };
  render->setTarget(cPtr<qplugin::iQpluginTarget>(new Taker(this)));

  render->renderFrame(1, 0, 0);

  const Log& calls = log->calls;
  ASSERT_GE(calls.size(), 3U);
  EXPECT_EQ((Log{"out.buffer", "~out", "~in"}), Log(calls.end() - 3, calls.end()));
}

TEST_F(RenderAdapter, EndsTargetStoreAndClipsBeforeItReports) {
  GiveSpread();
  cPtr<cGlimmerBlurRender> render = Connected();
  inputs.Reset();
  target.Reset();
  params.Reset();
  host.log.calls.clear();

  render.Reset();

  EXPECT_EQ((Log{"~target", "~out", "~params", "~spread", "~spreadImage", "~source", "~in",
                 "instanceDestroyed"}),
            host.log.calls);
}

TEST_F(RenderAdapter, LetsTheHostsExceptionsPassAndRendersTheNextFrame) {
  const auto render = Connected();
  host.log.throwAt = "source.frame(1,d,3)";
  EXPECT_THROW(render->renderFrame(1, 0, 0), lx_test::HostFault);
  host.log.throwAt = "in.buffer";
  EXPECT_THROW(render->renderFrame(2, 0, 0), lx_test::HostFault);

  host.log.throwAt.clear();
  render->renderFrame(3, 0, 0);

  EXPECT_NE(std::vector<std::uint16_t>(kWidth * kHeight * 4, 0), target->image->samples);
}

TEST_F(RenderAdapter, BuildsOnePsfForEqualParameters) {
  lx_test::FftRecorder fft;
  {
    const auto render = Connected();
    render->renderFrame(1, 0, 0);
    // A build would clear the mask.
    const lx::DefocusEngine& engine = *render->effect.engine;
    auto* mask = static_cast<std::uint8_t*>(Inside(engine).psfMask()->data);
    mask[0] = 1;
    fft.Clear();

    render->renderFrame(2, 0, 0);

    EXPECT_EQ(1, mask[0]);
    const std::size_t executions = Inside(engine).engineMode() == lx::kModeFftw ? 8 : 0;
    EXPECT_EQ(std::vector<std::string>(executions, "execute"), fft.Log());
  }
}

TEST_F(RenderAdapter, RendersOnAfterAPageHasGone) {
  const auto render = Connected();
  auto page = allplugins::cClassCtor<allplugins::cGlimmerBlurUI>().create();
  render->renderFrame(1, 0, 0);
  const auto first = target->image->samples;

  page.Reset();
  render->renderFrame(2, 0, 0);

  EXPECT_EQ(first, target->image->samples);
}

TEST_F(RenderAdapter, TakesThePsfFromTheSourceWithoutASecondClip) {
  params->numbers["PRM_Shape"] = 3;
  params->numbers["PRM_RadiusPSF1"] = 0.1;
  params->numbers["PRM_RadiusPSF2"] = 0.3;
  params->numbers["PRM_Center_X"] = 0.5;
  params->numbers["PRM_Center_Y"] = 0.5;
  const auto alone = Connected();
  alone->renderFrame(1, 0, 0);
  const auto fromSource = target->image->samples;
  inputs->spread = cPtr<lx_test::FakeSource>(new lx_test::FakeSource(&host.log, "spread"));
  inputs->spread->image = Image("spreadImage", 1);  // the same picture
  const auto with = Connected();

  with->renderFrame(1, 0, 0);

  EXPECT_EQ(fromSource, target->image->samples);
}

TEST_F(RenderAdapter, WritesNoHeapContentsWithoutAnEngine) {
  const auto render = Connected();
  delete render->effect.engine;
  render->effect.engine = nullptr;

  render->renderFrame(1, 0, 0);

  EXPECT_EQ(std::vector<std::uint16_t>(kWidth * kHeight * 4, 0), target->image->samples);
}

TEST_F(RenderAdapter, SkipsTheFrameWithoutAnOutputImage) {
  const auto render = Connected();
  const auto before = target->image->samples;
  {
    lx_test::HeapFaults heap;
    heap.Refuse(3);  // the source's samples and rows go first

    render->renderFrame(1, 0, 0);

    EXPECT_EQ(0, heap.Alive());
  }
  EXPECT_EQ(before, target->image->samples);
  EXPECT_EQ(nullptr, render->effect.sourcePort.image);
}

TEST_F(RenderAdapter, CommitsNothingFromItsControls) {
  const auto render = Connected();

  render->effect.radiusX.Commit();
  render->effect.center.Commit();

  EXPECT_TRUE(host.log.calls.empty());
}

TEST(RenderAdapters, RenderOnThreadsOfTheirOwn) {
  std::vector<std::vector<std::uint16_t>> results(2);
  struct QuietFactory final : quantel::iFactory, quantel::cRefCount {
    cPtr<quantel::cRegistration> registerClass(cPtr<iConstructor>) override { return {}; }
    cPtr<qplugin::iQplugin> findService(const quantel::cGuid&) override { return {}; }
    void instanceDestroyed(iInstance*) override {}
  };
  quantel::gFactory = cPtr<quantel::iFactory>(new QuietFactory);
  std::vector<std::thread> threads;
  for (auto& result : results) {
    threads.emplace_back([&result] {
      lx_test::CallLog log;
      const cPtr<lx_test::FakeInputs> inputs(new lx_test::FakeInputs(&log));
      const cPtr<lx_test::FakeTarget> target(new lx_test::FakeTarget(&log));
      const cPtr<lx_test::FakeParams> params(new lx_test::FakeParams(&log));
      params->numbers["PRM_RadiusX"] = 0.2;
      inputs->main = cPtr<lx_test::FakeSource>(new lx_test::FakeSource(&log, "source"));
      inputs->main->image = cPtr<FakeImage>(new FakeImage(&log, "in", 32, 32));
      inputs->main->image->samples[500] = 60000;
      target->image = cPtr<FakeImage>(new FakeImage(&log, "out", 32, 32));
      for (int i = 0; i < 4; ++i) {
        const cPtr<cGlimmerBlurRender> render(new cGlimmerBlurRender);
        render->setTarget(target);
        render->setInputs(inputs);
        render->setParams(params);
        render->renderFrame(i, 0, 0);
      }
      result = target->image->samples;
    });
  }
  for (std::thread& thread : threads) {
    thread.join();
  }
  quantel::gFactory.Reset();

  EXPECT_EQ(results[0], results[1]);
  EXPECT_GT(*std::max_element(results[0].begin(), results[0].end()), 0);
}

}  // namespace
