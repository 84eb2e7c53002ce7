// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/live/live_render.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <memory>
#include <ostream>
#include <string>
#include <utility>

#include "host/looks/keys.h"
#include "host/module/frame_renderer.h"
#include "host/module/module_choice.h"
#include "tests/host/viewer/shut_stream.h"

namespace glimmerhost {
namespace {

using viewer_test::Count;
using viewer_test::ShutStream;

const std::string kFastModule = std::string(MODULE_FOLDER) + "/fast/" + MODULE_NAME;

// A light in the middle, opaque.
std::shared_ptr<const LoadedFrame> Light(int frame, int width = 64, int height = 48) {
  auto picture = std::make_shared<Picture>();
  picture->width = width;
  picture->height = height;
  picture->samples.assign(picture->PixelCount() * 4, 0);
  for (std::size_t i = 3; i < picture->samples.size(); i += 4) {
    picture->samples[i] = 65535;
  }
  const std::size_t middle = (static_cast<std::size_t>(height / 2) * width + width / 2) * 4;
  picture->samples[middle] = 60000;
  picture->samples[middle + 1] = 50000;
  auto loaded = std::make_shared<LoadedFrame>();
  loaded->frame = frame;
  loaded->source = quantel::cPtr<FrameImage>(new FrameImage(*picture));
  loaded->picture = std::move(picture);
  return loaded;
}

struct Stage {
  explicit Stage(Trace* trace = nullptr)
      : module(std::make_shared<const EffectModule>(
            ModuleChoice{kFastModule, lx::FindFootprint("fast")}, trace)),
        values(Page::Load(PAGE).Defaults()) {
    values[kRadiusXKey] = 0.2;
  }

  RenderRequest Of(std::uint64_t serial, const std::shared_ptr<const LoadedFrame>& frame) const {
    return {serial, frame, values, 1.0, false};
  }

  // What the effect makes of the frame by an instance of its own.
  Picture Expected(const LoadedFrame& frame) const {
    Picture picture = *frame.picture;
    RenderPicture(*module, values, frame.spread, frame.pixelAspect, &picture);
    return picture;
  }

  std::shared_ptr<const EffectModule> module;
  std::map<std::string, Value> values;
  Count rings;
};

class LiveRenderOfAModule : public testing::Test, public Stage {};

TEST_F(LiveRenderOfAModule, MakesWhatANewInstanceMakes) {
  LiveRender live(module, [this] { rings.Add(); });
  const auto frame = Light(3);
  live.Ask(Of(1, frame));
  rings.WaitFor(1);
  const std::optional<RenderedFrame> rendered = live.Take();
  ASSERT_TRUE(rendered);
  ASSERT_TRUE(rendered->picture) << rendered->fault;
  EXPECT_EQ(rendered->serial, 1U);
  EXPECT_FALSE(rendered->isProxy);
  EXPECT_EQ(rendered->picture->samples, Expected(*frame).samples);
  EXPECT_NE(rendered->picture->samples, frame->picture->samples);
  EXPECT_FALSE(live.Take());
}

TEST_F(LiveRenderOfAModule, ForgetsTheApertureBefore) {
  LiveRender live(module, [this] { rings.Add(); });
  const auto frame = Light(1);
  live.Ask(Of(1, frame));
  rings.WaitFor(1);
  // So little more that an instance would keep its aperture.
  values[kRadiusXKey] = 0.2 + 1e-7;
  live.Ask(Of(2, frame));
  rings.WaitFor(2);
  EXPECT_EQ(live.Take()->picture->samples, Expected(*frame).samples);
}

TEST_F(LiveRenderOfAModule, MixesAsARenderDoes) {
  LiveRender live(module, [this] { rings.Add(); });
  const auto frame = Light(1);
  RenderRequest half = Of(1, frame);
  half.mix = 0.25;
  live.Ask(half);
  rings.WaitFor(1);
  const Picture blurred = Expected(*frame);
  const auto rendered = live.Take();
  for (std::size_t i = 0; i < blurred.samples.size(); ++i) {
    // To the nearest, halves upwards, in whole numbers: (3 * frame + blurred + 2) / 4.
    const auto expected = (3U * frame->picture->samples[i] + blurred.samples[i] + 2U) / 4U;
    ASSERT_EQ(rendered->picture->samples[i], expected) << i;
  }
}

TEST_F(LiveRenderOfAModule, MakesAProxyWhereTheTrueFrameWouldKeepAHandWaiting) {
  // No frame is made in so little time.
  LiveRender live(
      module, [this] { rings.Add(); }, 1e-6);
  const auto frame = Light(1, 256, 128);
  RenderRequest request = Of(1, frame);
  request.mayBeProxy = true;
  live.Ask(request);
  rings.WaitFor(1);
  // Nothing was known of the machine yet.
  EXPECT_FALSE(live.Take()->isProxy);

  request.serial = 2;
  live.Ask(request);
  rings.WaitFor(2);
  const auto proxy = live.Take();
  EXPECT_TRUE(proxy->isProxy);
  EXPECT_LT(proxy->picture->width, 256);
  EXPECT_EQ(proxy->frame, frame);

  live.Ask(Of(3, frame));
  rings.WaitFor(3);
  const auto whole = live.Take();
  EXPECT_FALSE(whole->isProxy);
  EXPECT_EQ(whole->picture->samples, Expected(*frame).samples);
}

TEST_F(LiveRenderOfAModule, SaysWhyAFrameCannotBe) {
  LiveRender live(module, [this] { rings.Add(); });
  values[kRadiusXKey] = 1e9;
  live.Ask(Of(1, Light(1)));
  rings.WaitFor(1);
  const auto rendered = live.Take();
  ASSERT_TRUE(rendered);
  EXPECT_FALSE(rendered->picture);
  EXPECT_NE(rendered->fault.find("is too large"), std::string::npos) << rendered->fault;
}

TEST(LiveRender, LeavesARenderThatHangsToItselfAndGoesOnAnew) {
  // The module's calls of the host are said into a stream that is shut meanwhile.
  ShutStream stream;
  std::ostream out(&stream);
  Trace trace(out);
  Stage stage(&trace);
  LiveRender live(stage.module, [&] { stage.rings.Add(); });
  EXPECT_FALSE(live.Busy());
  stream.Shut();
  live.Ask(stage.Of(1, Light(1)));
  stream.entered.WaitFor(1);
  EXPECT_TRUE(live.Busy());
  live.Ask(stage.Of(2, Light(2)));

  live.Abandon();
  EXPECT_EQ(live.Hanging(), 1);
  EXPECT_FALSE(live.Busy());

  // It comes back after all: nobody is given its frame, nor the one that waited behind it.
  stream.Open();
  stage.rings.WaitFor(1);
  EXPECT_EQ(live.Hanging(), 0);
  EXPECT_FALSE(live.Take());
  live.Ask(stage.Of(3, Light(3)));
  stage.rings.WaitFor(2);
  const auto rendered = live.Take();
  ASSERT_TRUE(rendered);
  EXPECT_EQ(rendered->serial, 3U);
  EXPECT_TRUE(rendered->picture);
}

}  // namespace
}  // namespace glimmerhost
