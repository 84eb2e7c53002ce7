// SPDX-License-Identifier: BSD-3-Clause
// The loader alone: what it puts into its channel, and when it stops.
#include "host/render/loader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/support/failure.h"
#include "tests/host/render/shot_stage.h"

namespace {

using glimmerhost::FrameState;
using glimmerhost::kPipe;
using glimmerhost::Loader;
using glimmerhost::PamReader;
using glimmerhost::Picture;
using glimmerhost::Value;
using render_test::EvenPicture;
using render_test::FrameChannel;
using render_test::States;
using render_test::Works;

class LoaderAlone : public render_test::ShotStage {
 public:
  // What the loader puts where everything is taken.
  Works Load(const std::string& engine = "fast", bool hashed = false) {
    reader = std::make_unique<PamReader>(pipe.get(), "the pipe");
    loader = std::make_unique<Loader>(page, settings, plan, *lx::FindFootprint(engine), hashed,
                                      reader.get());
    FrameChannel loaded(render_test::kRoom);
    loader->Run(&loaded);
    return TakeAll(&loaded);
  }

  // Frames whose pictures come from a pipe that holds so many, each a step brighter.
  void FillPipe(int pictures) {
    for (int i = 0; i < pictures; ++i) {
      glimmerhost::WritePam(EvenPicture(static_cast<std::uint16_t>(1000 * (i + 1))), pipe.get(),
                            "the pipe");
    }
    std::rewind(pipe.get());
  }
  void PlanOfPipe(int frames) {
    Plan(frames);
    for (auto& files : plan.files) {
      files.input = kPipe;
    }
  }
  void PlanOfPipeUntilItEnds() {
    plan.isShot = true;
    plan.filesOf = [this](int frame) {
      auto files = FilesOf(frame);
      files.input = kPipe;
      return files;
    };
  }

  static double Number(const std::map<std::string, Value>& values, const char* key) {
    return std::get<double>(values.at(key));
  }

  render_test::PipeFile pipe = OpenPipe();
  std::unique_ptr<PamReader> reader;
  std::unique_ptr<Loader> loader;
};

TEST_F(LoaderAlone, GivesEachFrameItsMixAndItsMask) {
  Plan(2);
  for (const int frame : {1, 2}) {
    WriteInput(frame, EvenPicture(100));
    const auto name = "mask." + std::to_string(frame) + ".png";
    glimmerhost::PictureOutput(folder / name, false)
        .Write(EvenPicture(static_cast<std::uint16_t>(frame * 1000)), 16);
    plan.files[static_cast<std::size_t>(frame - 1)].mask = folder / name;
  }
  Use("mix = 0.5");

  const Works works = Load();

  ASSERT_EQ((States{FrameState::kDone, FrameState::kDone}), StatesOf(works));
  EXPECT_EQ(0.5, works[0]->mix);
  EXPECT_EQ(1000, works[0]->mask->samples[0]);
  EXPECT_EQ(2000, works[1]->mask->samples[0]);
}

TEST_F(LoaderAlone, HasNoMaskWhereNoneIsAskedFor) {
  Plan(1);
  WriteInput(1, EvenPicture(100));

  const Works works = Load();

  EXPECT_EQ(1.0, works[0]->mix);
  EXPECT_EQ(nullptr, works[0]->mask);
}

TEST_F(LoaderAlone, FailsAFrameWhoseMaskHasAnotherSizeAndNamesBoth) {
  Plan(1);
  WriteInput(1, EvenPicture(100));
  WriteInput(7, EvenPicture(100, 5, 2));
  plan.files[0].mask = folder / InputName(7);

  const Works works = Load();

  ASSERT_EQ(States{FrameState::kFailed}, StatesOf(works));
  EXPECT_EQ(
      (folder / InputName(7)).string() + ": a mask must have the frame's size, 4 x 2, not 5 x 2",
      works[0]->report.fault);
}

TEST_F(LoaderAlone, TakesAMissingMaskForAMissingInput) {
  Plan(1);
  WriteInput(1, EvenPicture(100));
  plan.files[0].mask = folder / "none.png";

  EXPECT_EQ(States{FrameState::kMissing}, StatesOf(Load()));
}

TEST_F(LoaderAlone, GivesEachFrameItsPictureAndItsValues) {
  Plan(3);
  for (const int frame : {1, 2, 3}) {
    WriteInput(frame, EvenPicture(static_cast<std::uint16_t>(frame * 100)));
  }
  Use("emphasis = 'first=10; last=30'");

  const Works works = Load();

  ASSERT_EQ((States{FrameState::kDone, FrameState::kDone, FrameState::kDone}), StatesOf(works));
  for (std::size_t i = 0; i < 3; ++i) {
    const int frame = static_cast<int>(i) + 1;
    EXPECT_EQ(frame, works[i]->input.frame);
    EXPECT_EQ(frame * 100, works[i]->input.source->buffer()[0]);
    EXPECT_EQ(10.0 * frame, Number(works[i]->input.values, "PRM_Emphasis"));
    EXPECT_EQ((folder / OutputName(frame)).string(), works[i]->report.output);
    EXPECT_TRUE(works[i]->output != nullptr);
    EXPECT_EQ("", works[i]->inputHash);
  }
}

TEST_F(LoaderAlone, StopsAtAnInputThatIsMissing) {
  Plan(3);
  WriteInput(1, EvenPicture(100));
  WriteInput(3, EvenPicture(300));

  const Works works = Load();

  ASSERT_EQ((States{FrameState::kDone, FrameState::kMissing}), StatesOf(works));
  EXPECT_NE(std::string::npos, works[1]->report.fault.find(InputName(2)));
  EXPECT_FALSE(works[1]->input.source);
}

TEST_F(LoaderAlone, GoesOnBehindMissingAndBrokenInputsIfTold) {
  Plan(3);
  WriteText(InputName(2), "no picture");
  WriteInput(3, EvenPicture(300));
  settings.keepGoing = true;

  const Works works = Load();

  EXPECT_EQ((States{FrameState::kMissing, FrameState::kFailed, FrameState::kDone}),
            StatesOf(works));
}

TEST_F(LoaderAlone, StopsAtABrokenInputAndNamesIt) {
  Plan(2);
  WriteText(InputName(1), "no picture");
  WriteInput(2, EvenPicture(200));

  const Works works = Load();

  ASSERT_EQ(States{FrameState::kFailed}, StatesOf(works));
  EXPECT_NE(std::string::npos, works[0]->report.fault.find(InputName(1)));
}

// What is refused costs no reading: of the input nothing is known.
TEST_F(LoaderAlone, LooksAtTheOutputBeforeItReads) {
  Plan(1);
  WriteText(InputName(1), "no picture");
  WriteText(OutputName(1), "already here");

  const Works works = Load();

  ASSERT_EQ(States{FrameState::kFailed}, StatesOf(works));
  EXPECT_NE(std::string::npos, works[0]->report.fault.find(OutputName(1)));
}

TEST_F(LoaderAlone, HandsOnThatTheCommandIsWrongAndStops) {
  Plan(2);
  WriteInput(1, EvenPicture(100));
  plan.files[0].output = folder / "out.of-no-format";
  settings.keepGoing = true;

  const Works works = Load();

  ASSERT_EQ(1U, works.size());
  ASSERT_TRUE(works[0]->usage);
  EXPECT_THROW(std::rethrow_exception(works[0]->usage), glimmerhost::UsageError);
}

TEST_F(LoaderAlone, ReadsNothingOfAFrameThatItSkips) {
  Plan(2);
  WriteText(OutputName(1), "already here");
  WriteInput(2, EvenPicture(200));
  settings.skipExisting = true;

  const Works works = Load();

  ASSERT_EQ((States{FrameState::kSkipped, FrameState::kDone}), StatesOf(works));
  EXPECT_TRUE(works[0]->picture.samples.empty());
  EXPECT_EQ("already here", TextOf(OutputName(1)));
}

TEST_F(LoaderAlone, WarnsOfNoiseOnceAShot) {
  Plan(3);
  for (const int frame : {1, 2, 3}) {
    WriteInput(frame, EvenPicture(100));
  }
  Use("emphasis = 'first=75; 2=76; last=90'");

  const Works works = Load("exact");

  ASSERT_EQ(3U, works.size());
  EXPECT_EQ(0U, works[0]->report.remarks.size());
  ASSERT_EQ(1U, works[1]->report.remarks.size());
  EXPECT_NE(std::string::npos, works[1]->report.remarks[0].find("emphasis of 76"));
  EXPECT_EQ(0U, works[2]->report.remarks.size());
}

// The store holds a radius as a part of half the width.
TEST_F(LoaderAlone, SettlesPixelsByEachPicturesOwnSize) {
  Plan(2);
  WriteInput(1, EvenPicture(100, 40, 2));
  WriteInput(2, EvenPicture(100, 80, 2));
  Use("radius = '2px'");

  const Works works = Load();

  ASSERT_EQ(2U, works.size());
  EXPECT_EQ(2.0 / 20.0, Number(works[0]->input.values, "PRM_RadiusX"));
  EXPECT_EQ(2.0 / 40.0, Number(works[1]->input.values, "PRM_RadiusX"));
}

// A sequence has a file a frame; a still is opened once, and again where pictures have another
// size, since it is centred in each.
TEST_F(LoaderAlone, OpensTheSecondClipAgainOnlyWhereItMust) {
  Plan(3);
  WriteInput(1, EvenPicture(100, 4, 2));
  WriteInput(2, EvenPicture(100, 4, 2));
  WriteInput(3, EvenPicture(100, 6, 2));
  glimmerhost::PictureOutput(folder / "spread.png", false).Write(EvenPicture(7), 16);
  for (auto& files : plan.files) {
    files.spread = folder / "spread.png";
  }

  const Works works = Load();

  ASSERT_EQ(3U, works.size());
  EXPECT_EQ(works[0]->input.spread.Object(), works[1]->input.spread.Object());
  EXPECT_NE(works[0]->input.spread.Object(), works[2]->input.spread.Object());
  EXPECT_EQ(6, works[2]->input.spread->size().first);
}

TEST_F(LoaderAlone, HashesInputsIfToldTo) {
  Plan(3);
  WriteInput(1, EvenPicture(100));
  WriteInput(2, EvenPicture(100));
  WriteInput(3, EvenPicture(101));

  const Works works = Load("fast", true);

  ASSERT_EQ(3U, works.size());
  EXPECT_EQ(0U, works[0]->inputHash.find("xxh128:"));
  EXPECT_EQ(works[0]->inputHash, works[1]->inputHash);
  EXPECT_NE(works[0]->inputHash, works[2]->inputHash);
}

TEST_F(LoaderAlone, EndsWithAPipeThatNobodyHasCounted) {
  PlanOfPipeUntilItEnds();
  FillPipe(2);

  const Works works = Load();

  ASSERT_EQ((States{FrameState::kDone, FrameState::kDone}), StatesOf(works));
  EXPECT_EQ(1000, works[0]->input.source->buffer()[0]);
  EXPECT_EQ(2000, works[1]->input.source->buffer()[0]);
  EXPECT_FALSE(loader->LeavesPictures());
}

TEST_F(LoaderAlone, MissesThePicturesThatAPipeEndsBefore) {
  PlanOfPipe(4);
  FillPipe(2);
  settings.keepGoing = true;

  const Works works = Load();

  // Once, however many are missing: behind the end there is nothing to try.
  ASSERT_EQ((States{FrameState::kDone, FrameState::kDone, FrameState::kMissing}), StatesOf(works));
  EXPECT_EQ("the pipe: it ends after 2 pictures", works[2]->report.fault);
}

TEST_F(LoaderAlone, MissesAPictureInAnEmptyPipeWhateverWasAskedFor) {
  PlanOfPipeUntilItEnds();

  const Works works = Load();

  ASSERT_EQ(States{FrameState::kMissing}, StatesOf(works));
  EXPECT_EQ("the pipe: it holds no picture", works[0]->report.fault);
}

TEST_F(LoaderAlone, StopsAtABrokenPictureOfAPipeEvenIfToldToGoOn) {
  PlanOfPipeUntilItEnds();
  FillPipe(1);
  std::fseek(pipe.get(), 0, SEEK_END);
  std::fputs("P7\nWIDTH none\nENDHDR\n", pipe.get());
  std::rewind(pipe.get());
  settings.keepGoing = true;

  const Works works = Load();

  ASSERT_EQ((States{FrameState::kDone, FrameState::kFailed}), StatesOf(works));
  EXPECT_TRUE(works[1]->isLast);
}

TEST_F(LoaderAlone, SaysThatAPipeHoldsMoreThanWasAskedFor) {
  PlanOfPipe(1);
  FillPipe(2);

  EXPECT_EQ(1U, Load().size());
  EXPECT_TRUE(loader->LeavesPictures());
}

// The picture of a frame that is skipped would be taken for the next frame's.
TEST_F(LoaderAlone, TakesThePictureOfASkippedFrameFromThePipe) {
  PlanOfPipe(2);
  FillPipe(2);
  WriteText(OutputName(1), "already here");
  settings.skipExisting = true;

  const Works works = Load();

  ASSERT_EQ((States{FrameState::kSkipped, FrameState::kDone}), StatesOf(works));
  EXPECT_EQ(2000, works[1]->input.source->buffer()[0]);
}

TEST_F(LoaderAlone, ReadsNoMoreOnceNobodyTakesItsFrames) {
  int asked = 0;
  WriteInput(1, EvenPicture(100));
  plan.filesOf = [&](int frame) {
    ++asked;
    auto files = FilesOf(1);
    files.frame = frame;
    return files;
  };
  Loader endless(page, settings, plan, *lx::FindFootprint("fast"), false, nullptr);
  FrameChannel loaded(1);
  loaded.Abandon();

  endless.Run(&loaded);

  EXPECT_EQ(1, asked);
}

}  // namespace
