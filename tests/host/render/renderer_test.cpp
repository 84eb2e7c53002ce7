// SPDX-License-Identifier: BSD-3-Clause
// The renderer alone, with modules whose render is known: one copies the frame, one throws.
#include "host/render/renderer.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <exception>
#include <memory>
#include <string>
#include <utility>
#include <vector>

#include "host/module/effect_module.h"
#include "host/module/module_choice.h"
#include "host/support/failure.h"
#include "tests/host/render/shot_stage.h"

namespace {

using glimmerhost::EffectModule;
using glimmerhost::FrameImage;
using glimmerhost::FrameState;
using glimmerhost::FrameWork;
using glimmerhost::Renderer;
using render_test::EvenPicture;
using render_test::FrameChannel;
using render_test::States;
using render_test::Works;

class RendererAlone : public render_test::ShotStage {
 public:
  // A frame as the loader hands it on.
  std::unique_ptr<FrameWork> Loaded(int frame, FrameState state = FrameState::kDone) const {
    auto work = std::make_unique<FrameWork>();
    work->report.frame = frame;
    work->report.state = state;
    if (state == FrameState::kDone) {
      work->picture = EvenPicture(1001);
      work->input.frame = frame;
      work->input.values = page.Defaults();
      work->input.source = quantel::cPtr<FrameImage>(new FrameImage(work->picture));
    }
    return work;
  }

  void Put(std::unique_ptr<FrameWork> work) { loaded.Put(std::move(work)); }

  // What the renderer puts on of all that was put, where everything is taken.
  Works Render(const char* module) {
    const EffectModule effect({module, lx::FindFootprint("exact")});
    Renderer renderer(effect, settings);
    loaded.Close();
    renderer.Run(&loaded, &rendered);
    return TakeAll(&rendered);
  }

  FrameChannel loaded{render_test::kRoom};
  FrameChannel rendered{render_test::kRoom};
};

TEST_F(RendererAlone, PutsFramesOnWithWhatTheModuleMakesOfThem) {
  Put(Loaded(7));
  Put(Loaded(8));

  const Works works = Render(COPYING_MODULE);

  ASSERT_EQ((States{FrameState::kDone, FrameState::kDone}), StatesOf(works));
  EXPECT_EQ(8, works[1]->report.frame);
  // The border has 15 bits: 1001 loses its lowest, 65535 comes back whole.
  EXPECT_EQ(1000, works[1]->result->buffer()[0]);
  EXPECT_EQ(65535, works[1]->result->buffer()[3]);
}

TEST_F(RendererAlone, PutsOnWhatItHasNotToRender) {
  Put(Loaded(1, FrameState::kSkipped));
  Put(Loaded(2, FrameState::kMissing));
  Put(Loaded(3, FrameState::kFailed));
  settings.keepGoing = true;

  const Works works = Render(COPYING_MODULE);

  ASSERT_EQ((States{FrameState::kSkipped, FrameState::kMissing, FrameState::kFailed}),
            StatesOf(works));
  for (const auto& work : works) {
    EXPECT_FALSE(work->result);
  }
}

TEST_F(RendererAlone, StopsWhereTheModuleFails) {
  Put(Loaded(1));
  Put(Loaded(2));

  const Works works = Render(BROKEN_MODULE);

  ASSERT_EQ(States{FrameState::kFailed}, StatesOf(works));
  EXPECT_NE(std::string::npos, works[0]->report.fault.find("broken"));
  EXPECT_FALSE(works[0]->result);
}

TEST_F(RendererAlone, TriesTheNextFrameBehindAFailureIfTold) {
  Put(Loaded(1));
  Put(Loaded(2));
  settings.keepGoing = true;

  EXPECT_EQ((States{FrameState::kFailed, FrameState::kFailed}), StatesOf(Render(BROKEN_MODULE)));
}

// The module would give it back as a copy, and say nothing.
TEST_F(RendererAlone, DoesNotTroubleTheModuleWithAFrameThatIsTooLarge) {
  auto work = Loaded(1);
  work->picture.width = 9000;
  Put(std::move(work));

  const Works works = Render(COPYING_MODULE);

  ASSERT_EQ(States{FrameState::kFailed}, StatesOf(works));
  EXPECT_NE(std::string::npos, works[0]->report.fault.find("too large"));
  EXPECT_FALSE(works[0]->result);
}

TEST_F(RendererAlone, PutsOnThatTheCommandIsWrongAndStops) {
  auto work = Loaded(1);
  work->usage = std::make_exception_ptr(glimmerhost::UsageError("no"));
  Put(std::move(work));
  Put(Loaded(2));
  settings.keepGoing = true;

  const Works works = Render(COPYING_MODULE);

  ASSERT_EQ(1U, works.size());
  EXPECT_TRUE(works[0]->usage);
  EXPECT_FALSE(works[0]->result);
}

TEST_F(RendererAlone, StopsTheLoaderOnceNobodyTakesItsFrames) {
  const EffectModule effect({COPYING_MODULE, lx::FindFootprint("exact")});
  Renderer renderer(effect, settings);
  Put(Loaded(1));
  Put(Loaded(2));
  rendered.Abandon();

  renderer.Run(&loaded, &rendered);

  EXPECT_FALSE(loaded.Put(Loaded(3)));
  EXPECT_FALSE(loaded.Take());
}

}  // namespace
