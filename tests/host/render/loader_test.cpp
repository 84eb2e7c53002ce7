// SPDX-License-Identifier: BSD-3-Clause
// The loader alone: what it puts into its channel, and when it stops.
#include "host/render/loader.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <filesystem>
#include <functional>
#include <future>
#include <map>
#include <memory>
#include <string>
#include <variant>
#include <vector>

#include "host/render/frame_digest.h"
#include "host/shots/file_hash.h"
#include "host/shots/frame_claim.h"
#include "host/shots/manifest.h"
#include "host/support/failure.h"
#include "tests/host/render/shot_stage.h"

namespace {

using glimmerhost::FrameClaim;
using glimmerhost::FrameState;
using glimmerhost::kPipe;
using glimmerhost::Loader;
using glimmerhost::Manifest;
using glimmerhost::ManifestEntry;
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
  Works Load(const std::string& engine = "fast", bool kept = false) {
    if (kept) {
      manifest = std::make_unique<Manifest>(folder / "shot.jsonl", true, false);
    }
    reader = std::make_unique<PamReader>(pipe.get(), "the pipe");
    loader = std::make_unique<Loader>(page, settings, plan, *lx::FindFootprint(engine),
                                      manifest.get(), reader.get());
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
  std::unique_ptr<Manifest> manifest;
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

// What is known from the head is said before samples are read: here there are none.
TEST_F(LoaderAlone, ReadsNoSamplesOfAPictureThatTheEngineCannotTake) {
  Plan(1);
  WriteHeadAlone(1, 20000, 20000);

  const Works works = Load("exact");

  ASSERT_EQ(1U, works.size());
  EXPECT_EQ(FrameState::kFailed, works[0]->report.state);
  EXPECT_TRUE(works[0]->report.fault.starts_with("a picture of 20000 x 20000 with a radius of "))
      << works[0]->report.fault;
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
    EXPECT_TRUE(works[i]->sources.empty());
    EXPECT_EQ("", works[i]->digest);
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
  EXPECT_EQ(0U, works[0]->sources.at("input").hash.find("xxh128:"));
  EXPECT_EQ(works[0]->sources.at("input").hash, works[1]->sources.at("input").hash);
  EXPECT_NE(works[0]->sources.at("input").hash, works[2]->sources.at("input").hash);
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

// A frame that was rendered with a manifest, as the writer leaves it.
class LoaderOfARenderedShot : public LoaderAlone {
 public:
  void SetUp() override {
    Plan(2);
    for (const int frame : {1, 2}) {
      WriteInput(frame, EvenPicture(static_cast<std::uint16_t>(frame * 100)));
    }
    Use("radius = '2px'");
    settings.versions = {{"module", "one"}};
    Render();
    settings.skipExisting = true;
  }

  // With a line for each frame.
  void Render() {
    const Works works = Load("fast", true);
    for (const auto& work : works) {
      WriteText(OutputName(work->files.frame), "rendered");
      ManifestEntry entry;
      entry.frame = work->files.frame;
      entry.output = work->files.output.string();
      entry.outputHash = glimmerhost::FileHash(work->files.output);
      entry.digest = work->digest;
      entry.sources = work->sources;
      entry.width = work->readSize.first;
      entry.height = work->readSize.second;
      manifest->Add(entry);
    }
  }

  // What becomes of the two frames when they are looked at again.
  States Again() { return StatesOf(Load("fast", true)); }

  const States bothSkipped{FrameState::kSkipped, FrameState::kSkipped};
  const States bothDone{FrameState::kDone, FrameState::kDone};
};

TEST_F(LoaderOfARenderedShot, SkipsWhatWouldComeOutTheSame) {
  EXPECT_EQ(bothSkipped, Again());
  // Another time, and the same contents.
  std::filesystem::last_write_time(folder / InputName(1), {});
  EXPECT_EQ(bothSkipped, Again());
  // What is written of a frame without a word of its samples.
  settings.keepGoing = true;
  settings.shot = "1-2";
  EXPECT_EQ(bothSkipped, Again());
}

TEST_F(LoaderOfARenderedShot, RendersAgainWhatComesOfAnotherInput) {
  std::filesystem::remove(folder / InputName(2));
  WriteInput(2, EvenPicture(201));

  const Works works = Load("fast", true);

  ASSERT_EQ((States{FrameState::kSkipped, FrameState::kDone}), StatesOf(works));
  // Which replaces what the run before has written.
  works[1]->output->Write(EvenPicture(7), 16);
}

TEST_F(LoaderOfARenderedShot, RendersAgainWhatComesOfOtherSettings) {
  const auto before = settings;
  const std::vector<std::function<void()>> changes = {
      [this] { Use("radius = '1px'"); },
      [this] { Use("radius = '2px'\nshape = 'polygon'"); },
      [this] { settings.premultiplied = false; },
      [this] { settings.coding.bits = 8; },
      [this] { settings.coding.compression = "small"; },
      [this] { settings.coding.quality = 7; },
      [this] { Use("radius = '2px'\nmix = 0.5"); },
      [this] { Use("radius = '2px'\nmix = 'first=1; last=0.9'"); },
      [this] {
        settings.pixelAspect = {2, 1};
      },
      [this] { settings.reading.range = glimmerhost::RangeMapping::Parse("scale:4"); },
      [this] {
        auto colours = std::make_shared<glimmerhost::ColourPath>();
        colours->identity = "another space";
        settings.reading.colours = colours;
      },
      [this] { settings.carryPsf = true; },
      [this] {
        settings.versions = {{"module", "another"}};
      },
  };
  for (std::size_t i = 0; i < changes.size(); ++i) {
    settings = before;
    changes[i]();
    // Of a mix that moves the first frame is what it was.
    const States expected = i == 7 ? States{FrameState::kSkipped, FrameState::kDone} : bothDone;
    EXPECT_EQ(expected, Again()) << i;
  }
  settings = before;
  EXPECT_EQ(bothDone, StatesOf(Load("exact", true)));
  EXPECT_EQ(bothSkipped, Again());
}

// Machines of a farm have each a file of the module, which they would render again and again.
TEST_F(LoaderOfARenderedShot, SkipsWhatAnotherFileOfTheSameEngineHasRendered) {
  settings.overwrite = true;
  settings.skipExisting = false;
  settings.versions = {{"module", "of this system"}, {"engine", "fast 1"}};
  Render();
  settings.overwrite = false;
  settings.skipExisting = true;

  settings.versions["module"] = "of another system";
  EXPECT_EQ(bothSkipped, Again());
  settings.versions["engine"] = "fast 2";
  EXPECT_EQ(bothDone, Again());
}

// A PNG has none of them, so that no frame here could be rendered with it.
TEST(FrameDigests, TellWhichChannelsAreBlurred) {
  const auto digest = [](const std::vector<std::string>& patterns) {
    glimmerhost::ShotSettings settings;
    settings.reading.blurChannels = patterns;
    return glimmerhost::FrameDigest(
        glimmerhost::WhatDecides(settings, *lx::FindFootprint("fast"), {}, {}, {}));
  };
  EXPECT_NE(digest({}), digest({"Z"}));
  EXPECT_NE(digest({"Z"}), digest({"diffuse.*", "Z"}));
  EXPECT_EQ(digest({"Z"}), digest({"Z"}));
}

// A value at the frame counts, and not the text that it comes from.
TEST_F(LoaderOfARenderedShot, RendersAgainTheFramesWhoseValuesMove) {
  Use("radius = '2px'\nemphasis = 'first=1; last=30'");
  EXPECT_EQ((States{FrameState::kSkipped, FrameState::kDone}), Again());
}

TEST_F(LoaderOfARenderedShot, RendersAgainWhereTheSpreadIsAnother) {
  const auto writeSpread = [this](std::uint16_t sample) {
    glimmerhost::PictureOutput(folder / "spread.png", true).Write(EvenPicture(sample), 16);
  };
  writeSpread(7);
  for (auto& files : plan.files) {
    files.spread = folder / "spread.png";
  }
  // A circle takes nothing of it.
  EXPECT_EQ(bothSkipped, Again());
  Use("radius = '2px'\nshape = 'image'");
  const std::string first = Load("fast", true).at(0)->digest;
  writeSpread(8);
  EXPECT_NE(first, Load("fast", true).at(0)->digest);
}

TEST_F(LoaderOfARenderedShot, RendersAgainWhatALineOfAnEarlierProgramTellsOf) {
  ManifestEntry entry = *manifest->Last(1);
  entry.digest = "";
  manifest->Add(entry);
  EXPECT_EQ((States{FrameState::kDone, FrameState::kSkipped}), Again());
}

// It was killed between the line and the output: the one before is still there.
TEST_F(LoaderOfARenderedShot, KnowsTheOutputOfAnEarlierLine) {
  ManifestEntry entry = *manifest->Last(1);
  entry.outputHash = "xxh128:of an output that never came";
  manifest->Add(entry);
  EXPECT_EQ((States{FrameState::kDone, FrameState::kSkipped}), Again());
}

TEST_F(LoaderOfARenderedShot, RefusesByNameWhatNoLineTellsOf) {
  settings.keepGoing = true;
  WriteText(OutputName(1), "somebody's");

  Works works = Load("fast", true);

  ASSERT_EQ((States{FrameState::kFailed, FrameState::kSkipped}), StatesOf(works));
  EXPECT_EQ((folder / OutputName(1)).string() + ": exists already, and no line of " +
                (folder / "shot.jsonl").string() + " tells of it; --overwrite replaces it",
            works[0]->report.fault);
  EXPECT_EQ("somebody's", TextOf(OutputName(1)));
  works.clear();
  settings.overwrite = true;
  EXPECT_EQ((States{FrameState::kDone, FrameState::kSkipped}), Again());
}

TEST_F(LoaderOfARenderedShot, MissesAnInputThatIsGone) {
  std::filesystem::remove(folder / InputName(1));
  EXPECT_EQ(States{FrameState::kMissing}, Again());
}

// Another program's claim is another opening, which this one's is too.
class LoaderBesideAnother : public LoaderAlone {
 public:
  void SetUp() override {
    Plan(3);
    for (const int frame : {1, 2, 3}) {
      WriteInput(frame, EvenPicture(100));
    }
    settings.skipExisting = true;
  }
  std::filesystem::path ClaimOf(int frame) const {
    return FrameClaim::FileOf(folder / OutputName(frame));
  }
};

TEST_F(LoaderBesideAnother, ClaimsAFrameForAsLongAsItIsInWork) {
  Works works = Load();
  ASSERT_EQ(3U, works.size());
  EXPECT_TRUE(std::filesystem::exists(ClaimOf(2)));
  EXPECT_FALSE(FrameClaim::Try(folder / OutputName(2)));
  works.clear();
  EXPECT_FALSE(std::filesystem::exists(ClaimOf(2)));
}

TEST_F(LoaderBesideAnother, ClaimsNothingWhereNoFrameIsSkipped) {
  settings.skipExisting = false;
  const Works works = Load();
  EXPECT_FALSE(std::filesystem::exists(ClaimOf(2)));
}

TEST_F(LoaderBesideAnother, WaitsInTheEndForAFrameThatAnotherHasInWork) {
  for (const bool isDone : {false, true}) {
    auto theirs = FrameClaim::Try(folder / OutputName(2));
    ASSERT_TRUE(theirs);
    Loader beside(page, settings, plan, *lx::FindFootprint("fast"), nullptr, nullptr);
    FrameChannel loaded(render_test::kRoom);
    auto loading = std::async(std::launch::async, [&] { beside.Run(&loaded); });
    EXPECT_EQ(1, (*loaded.Take())->files.frame);
    EXPECT_EQ(3, (*loaded.Take())->files.frame);
    if (isDone) {
      WriteText(OutputName(2), "done by the other");
    }
    theirs = nullptr;
    const auto last = loaded.Take();
    ASSERT_TRUE(last);
    EXPECT_EQ(2, (*last)->files.frame);
    EXPECT_EQ(isDone ? FrameState::kSkipped : FrameState::kDone, (*last)->report.state);
    loading.get();
  }
}

// It was killed between the output and the end of its claim.
TEST_F(LoaderBesideAnother, RemovesTheClaimThatIsLeftOverOfAFrameThatIsDone) {
  WriteText(OutputName(2), "done by the other");
  WriteText(ClaimOf(2).filename().string(), "1 elsewhere");

  EXPECT_EQ((States{FrameState::kDone, FrameState::kSkipped, FrameState::kDone}), StatesOf(Load()));

  EXPECT_FALSE(std::filesystem::exists(ClaimOf(2)));
}

TEST_F(LoaderBesideAnother, WaitsNoLongerOnceNobodyTakesItsFrames) {
  const auto theirs = FrameClaim::Try(folder / OutputName(3));
  Loader beside(page, settings, plan, *lx::FindFootprint("fast"), nullptr, nullptr);
  FrameChannel loaded(render_test::kRoom);
  auto loading = std::async(std::launch::async, [&] { beside.Run(&loaded); });
  loaded.Take();
  loaded.Take();
  loaded.Abandon();
  loading.get();
  EXPECT_FALSE(std::filesystem::exists(ClaimOf(2)));
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
  Loader endless(page, settings, plan, *lx::FindFootprint("fast"), nullptr, nullptr);
  FrameChannel loaded(1);
  loaded.Abandon();

  endless.Run(&loaded);

  EXPECT_EQ(1, asked);
}

}  // namespace
