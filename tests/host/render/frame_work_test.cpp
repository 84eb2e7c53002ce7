// SPDX-License-Identifier: BSD-3-Clause
// What loader, renderer and writer share: a frame's faults, and the ends of their loops.
#include "host/render/frame_work.h"

#include <gtest/gtest.h>

#include <memory>
#include <new>
#include <stdexcept>
#include <string>

#include "host/support/failure.h"
#include "tests/host/render/shot_stage.h"

namespace {

using glimmerhost::ClosedAtEnd;
using glimmerhost::DoPart;
using glimmerhost::FrameState;
using glimmerhost::FrameWork;
using glimmerhost::IsLastFrame;
using render_test::FrameChannel;

class FramePart : public render_test::ShotStage {};

TEST_F(FramePart, MakesWhatIsThrownTheFramesOwn) {
  FrameWork missing;
  DoPart(&missing, [] { throw glimmerhost::MissingInput("a.png is missing"); });
  EXPECT_EQ(FrameState::kMissing, missing.report.state);
  EXPECT_EQ("a.png is missing", missing.report.fault);

  FrameWork failed;
  DoPart(&failed, [] { throw std::runtime_error("it failed"); });
  EXPECT_EQ(FrameState::kFailed, failed.report.state);
  EXPECT_EQ("it failed", failed.report.fault);

  FrameWork wrong;
  DoPart(&wrong, [] { throw glimmerhost::UsageError("no"); });
  EXPECT_TRUE(wrong.usage);
  EXPECT_EQ(FrameState::kDone, wrong.report.state);
}

// A person would not know what std::bad_alloc is.
TEST_F(FramePart, SaysThatThereIsNotEnoughMemory) {
  FrameWork work;
  DoPart(&work, [] { throw std::bad_alloc(); });
  EXPECT_EQ(FrameState::kFailed, work.report.state);
  EXPECT_NE(std::string::npos, work.report.fault.find("memory"));
}

TEST_F(FramePart, IsNotDoneForAFrameThatHasFailed) {
  int done = 0;
  const auto count = [&] { ++done; };
  FrameWork work;
  for (const FrameState state : {FrameState::kFailed, FrameState::kMissing}) {
    work.report.state = state;
    DoPart(&work, count);
  }
  work.report.state = FrameState::kDone;
  work.usage = std::make_exception_ptr(glimmerhost::UsageError("no"));
  DoPart(&work, count);
  EXPECT_EQ(0, done);

  work.usage = nullptr;
  work.report.state = FrameState::kSkipped;
  DoPart(&work, count);
  EXPECT_EQ(1, done);
}

TEST_F(FramePart, EndsTheShotByAFailureUnlessToldToGoOn) {
  struct Case {
    FrameState state;
    bool isLast;
    bool keepGoing;
    bool ends;
  };
  const Case cases[] = {
      {FrameState::kDone, false, false, false},    {FrameState::kDone, true, true, true},
      {FrameState::kSkipped, false, false, false}, {FrameState::kFailed, false, false, true},
      {FrameState::kFailed, false, true, false},   {FrameState::kMissing, false, false, true},
      {FrameState::kMissing, false, true, false},  {FrameState::kMissing, true, true, true},
  };
  for (const Case& c : cases) {
    FrameWork work;
    work.report.state = c.state;
    work.isLast = c.isLast;
    EXPECT_EQ(c.ends, IsLastFrame(work, c.keepGoing))
        << static_cast<int>(c.state) << c.isLast << c.keepGoing;
  }
  FrameWork wrong;
  wrong.usage = std::make_exception_ptr(glimmerhost::UsageError("no"));
  EXPECT_TRUE(IsLastFrame(wrong, true));
}

TEST_F(FramePart, TakesNeitherAFolderNorAnEmptyFileForAnOutput) {
  const auto exists = [this](int frame) { return OutputExists(FilesOf(frame)); };
  WriteText(OutputName(1), "a");
  WriteText(OutputName(2), "");
  render_test::fs::create_directory(folder / OutputName(3));

  EXPECT_TRUE(exists(1));
  EXPECT_FALSE(exists(2));
  EXPECT_FALSE(exists(3));
  EXPECT_FALSE(exists(4));
}

TEST_F(FramePart, LetsBothNeighboursGoWhereALoopEnds) {
  FrameChannel from(1);
  FrameChannel to(1);
  {
    const ClosedAtEnd end(&from, &to);
    EXPECT_TRUE(from.Put(std::make_unique<FrameWork>()));
    EXPECT_TRUE(to.Put(std::make_unique<FrameWork>()));
  }
  EXPECT_FALSE(from.Put(std::make_unique<FrameWork>()));
  EXPECT_FALSE(from.Take());
  // What is done is still taken.
  EXPECT_TRUE(to.Take());
  EXPECT_FALSE(to.Take());
}

}  // namespace
