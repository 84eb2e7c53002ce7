// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/render_job.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <algorithm>
#include <vector>

#include "host/shots/manifest.h"
#include "host/support/failure.h"
#include "tests/host/viewer/jobs/shot_folder.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr int kLong = 60000;

// A job with all that it told.
class Told {
 public:
  Told() {
    QObject::connect(&job, &RenderJob::FrameTold,
                     [this](const FrameReport& frame) { frames.push_back(frame); });
    QObject::connect(&job, &RenderJob::LineSaid,
                     [this](const QString& line) { lines.push_back(line); });
    QObject::connect(&job, &RenderJob::Ended, [this](const JobEnd& told) { end = told; });
  }

  void Run(const std::vector<std::string>& words) {
    QSignalSpy ended(&job, &RenderJob::Ended);
    job.Start(PROGRAM, words);
    if (ended.isEmpty()) {
      EXPECT_TRUE(ended.wait(kLong));
    }
    EXPECT_EQ(1, ended.count());
    EXPECT_FALSE(job.IsRunning());
  }

  RenderJob job;
  std::vector<FrameReport> frames;
  std::vector<QString> lines;
  JobEnd end;
};

TEST(RenderJob, TellsEachFrameAndThatAllAreDone) {
  const ShotFolder shot(1, 3);
  Told told;
  told.Run(shot.Words());
  EXPECT_TRUE(told.end.isDone);
  EXPECT_EQ(0, told.end.code);
  ASSERT_EQ(3U, told.frames.size());
  for (int frame = 1; frame <= 3; ++frame) {
    EXPECT_EQ(frame, told.frames[frame - 1].frame);
    EXPECT_EQ(FrameState::kDone, told.frames[frame - 1].state);
    EXPECT_EQ(shot.Out(frame).string(), told.frames[frame - 1].output);
    EXPECT_TRUE(fs::exists(shot.Out(frame)));
  }
  EXPECT_EQ(3U, told.job.Progress().count);
  EXPECT_EQ(0.0, told.job.Progress().SecondsLeft());
  EXPECT_EQ(3U, ReadManifest(shot.target.manifest).size());
}

TEST(RenderJob, LeavesWholeFilesAloneWhereItIsCancelledAndGoesOnFromThere) {
  const ShotFolder shot(1, 60, 200, 150);
  Told told;
  QObject::connect(&told.job, &RenderJob::FrameTold, [&told] { told.job.Cancel(); });
  told.Run(shot.Words());
  EXPECT_TRUE(told.end.isCancelled);
  EXPECT_FALSE(told.end.isDone);
  std::size_t whole = 0;
  for (const auto& entry : fs::directory_iterator(shot.folder / "out")) {
    if (entry.path() != shot.target.manifest) {
      EXPECT_EQ(200, ReadBack(entry.path()).width) << entry.path();
      ++whole;
    }
  }
  EXPECT_LE(1U, whole);
  EXPECT_GT(60U, whole);

  Told again;
  again.Run(shot.Words());
  EXPECT_TRUE(again.end.isDone) << again.end.words.toStdString();
  EXPECT_EQ(whole, again.job.Progress().skipped);
  EXPECT_EQ(60U - whole, again.job.Progress().done);
}

TEST(RenderJob, TellsWhichFrameFailedAndWhy) {
  const ShotFolder shot(1, 3);
  shot.Break(2);
  Told told;
  told.Run(shot.Words());
  EXPECT_FALSE(told.end.isDone);
  EXPECT_EQ(kExitFailed, told.end.code);
  ASSERT_EQ(2U, told.frames.size());
  EXPECT_EQ(FrameState::kFailed, told.frames.back().state);
  EXPECT_TRUE(told.end.words.contains("frame 2")) << told.end.words.toStdString();
  EXPECT_TRUE(told.end.words.contains("in.2.png")) << told.end.words.toStdString();
}

TEST(RenderJob, GoesOnPastAFrameThatFailsWhereThatIsAsked) {
  ShotFolder shot(1, 3);
  shot.Break(2);
  shot.target.keepsGoing = true;
  Told told;
  told.Run(shot.Words());
  EXPECT_EQ(kExitFailed, told.end.code);
  EXPECT_EQ(2U, told.job.Progress().done);
  EXPECT_EQ(1U, told.job.Progress().failed);
}

TEST(RenderJob, SaysWhatIsWrongWithACommand) {
  ShotFolder shot(1, 1);
  shot.target.bits = "7";
  Told told;
  told.Run(shot.Words());
  EXPECT_EQ(kExitUsage, told.end.code);
  EXPECT_TRUE(told.end.words.contains("--bits")) << told.end.words.toStdString();
  ASSERT_EQ(1U, told.lines.size());
  EXPECT_TRUE(told.lines.front().startsWith("glimmerhost: "));
}

TEST(RenderJob, SaysWhichProgramIsMissing) {
  const ShotFolder shot(1, 1);
  Told told;
  QSignalSpy ended(&told.job, &RenderJob::Ended);
  told.job.Start(shot.folder / "no_program", shot.Words());
  ASSERT_TRUE(!ended.isEmpty() || ended.wait(kLong));
  EXPECT_FALSE(told.end.isDone);
  EXPECT_EQ(-1, told.end.code);
  EXPECT_TRUE(told.end.words.contains("no_program")) << told.end.words.toStdString();
  EXPECT_FALSE(told.job.IsRunning());
}

TEST(RenderJob, TellsTheFramesOfAllProcessesOfAFarm) {
  const ShotFolder shot(1, 4);
  FarmTarget farm;
  farm.processes = 2;
  Told told;
  told.Run(SubmitWords(ThePage(), shot.input, shot.target, farm));
  EXPECT_TRUE(told.end.isDone) << told.end.words.toStdString();
  EXPECT_EQ(4U, told.job.Progress().done);
  EXPECT_EQ(4U, told.job.Progress().count);
}

// A window that closes takes its processes along.
TEST(RenderJob, EndsItsProcessWithItself) {
  const ShotFolder shot(1, 60, 200, 150);
  {
    RenderJob job;
    QSignalSpy told(&job, &RenderJob::FrameTold);
    job.Start(PROGRAM, shot.Words());
    ASSERT_TRUE(told.wait(kLong));
  }
  const auto count = ReadManifest(shot.target.manifest).size();
  EXPECT_GT(60U, count);
  EXPECT_FALSE(fs::exists(shot.Out(60)));
}

}  // namespace
}  // namespace glimmerhost
