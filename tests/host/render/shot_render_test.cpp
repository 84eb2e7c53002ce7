// SPDX-License-Identifier: BSD-3-Clause
// Loader, renderer and writer together, on their threads: whichever ends first ends the others.
#include "host/render/shot_render.h"

#include <gtest/gtest.h>

#include <string>

#include "host/module/module_choice.h"
#include "host/support/failure.h"
#include "tests/host/render/shot_stage.h"

namespace {

using glimmerhost::EffectModule;
using glimmerhost::FrameState;
using glimmerhost::Picture;
using glimmerhost::ShotRender;
using glimmerhost::ShotReport;
using render_test::EvenPicture;

class ThreeThreads : public render_test::ShotStage {
 public:
  // A shot of one input that never ends by itself.
  void PlanForEver() {
    plan.isShot = true;
    plan.filesOf = [this](int frame) {
      auto files = FilesOf(frame);
      files.input = folder / InputName(1);
      return files;
    };
  }

  void Run(const char* module) {
    const EffectModule effect({module, lx::FindFootprint("exact")});
    ShotReport report(ShotReport::Form::kQuiet, 0, true);
    testing::internal::CaptureStderr();
    try {
      ShotRender(page, settings, plan, effect, nullptr).Run(&report);
    } catch (...) {
      (void)testing::internal::GetCapturedStderr();
      throw;
    }
    (void)testing::internal::GetCapturedStderr();
    done = report.Count(FrameState::kDone);
    failed = report.Count(FrameState::kFailed);
    missing = report.Count(FrameState::kMissing);
  }

  std::size_t done = 0;
  std::size_t failed = 0;
  std::size_t missing = 0;
};

// Even pictures, which the effect would not change either.
TEST_F(ThreeThreads, WriteAllFramesOfAPlan) {
  Plan(12);
  for (int frame = 1; frame <= 12; ++frame) {
    WriteInput(frame, EvenPicture(static_cast<std::uint16_t>(1000 * frame)));
  }

  Run(COPYING_MODULE);

  EXPECT_EQ(12U, done);
  EXPECT_EQ(24, folder.FileCount());
}

TEST_F(ThreeThreads, EndWhereTheLoaderDoes) {
  Plan(3);
  WriteInput(1, EvenPicture(1000));
  WriteInput(3, EvenPicture(1000));

  Run(COPYING_MODULE);

  EXPECT_EQ(1U, done);
  EXPECT_EQ(1U, missing);
}

TEST_F(ThreeThreads, EndWhereTheRendererDoes) {
  PlanForEver();
  WriteInput(1, EvenPicture(1000));

  Run(BROKEN_MODULE);

  EXPECT_EQ(0U, done);
  EXPECT_EQ(1U, failed);
}

// Nobody but the writer sees that the frame came back as it was.
TEST_F(ThreeThreads, EndWhereTheWriterDoes) {
  PlanForEver();
  Picture picture = EvenPicture(1000, 40, 2);
  picture.samples[4] = 40001;
  WriteInput(1, picture);
  Use("radius = '10px'");

  Run(COPYING_MODULE);

  EXPECT_EQ(0U, done);
  EXPECT_EQ(1U, failed);
}

TEST_F(ThreeThreads, EndWhereTheCommandIsWrong) {
  PlanForEver();
  WriteInput(1, EvenPicture(1000));
  Use("radius = '-3px'");
  settings.keepGoing = true;

  EXPECT_THROW(Run(COPYING_MODULE), glimmerhost::UsageError);
}

}  // namespace
