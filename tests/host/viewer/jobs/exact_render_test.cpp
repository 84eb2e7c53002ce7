// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/exact_render.h"

#include <gtest/gtest.h>

#include <QSignalSpy>
#include <vector>

#include "tests/host/viewer/jobs/shot_folder.h"
#include "tests/support/child_program.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

constexpr int kLong = 60000;

class Answers {
 public:
  explicit Answers(const fs::path& program) : render(ThePage(), program) {
    QObject::connect(&render, &ExactRender::Answered,
                     [this](const ExactFrame& frame) { frames.push_back(frame); });
  }

  // Until something is answered.
  void Wait() {
    QSignalSpy answered(&render, &ExactRender::Answered);
    EXPECT_TRUE(!frames.empty() || answered.wait(kLong));
  }

  ExactRender render;
  std::vector<ExactFrame> frames;
};

ExactRequest RequestOf(const ShotFolder& shot, std::uint64_t serial, int frame) {
  ExactRequest request;
  request.serial = serial;
  request.file = shot.In(frame).string();
  request.frame = frame;
  request.span = shot.input.span;
  request.look = shot.input.look;
  return request;
}

TEST(ExactRender, GivesTheFrameThatTheProgramRenders) {
  const ShotFolder shot(1, 5);
  Answers answers(PROGRAM);
  answers.render.Ask(RequestOf(shot, 8, 4));
  EXPECT_TRUE(answers.render.IsRunning());
  answers.Wait();

  ASSERT_EQ(1U, answers.frames.size());
  const ExactFrame& frame = answers.frames.front();
  EXPECT_EQ(8U, frame.serial);
  EXPECT_EQ("", frame.fault.toStdString());
  EXPECT_FALSE(answers.render.IsRunning());
  const lx_test::Outcome outcome =
      lx_test::RunChild(PROGRAM, {"render", shot.input.input, "-o", shot.target.output, "--engine",
                                  "exact", "--frames", "4", "--radius", "first=3px; last=9px"});
  ASSERT_EQ(0, outcome.code) << outcome.text;
  ASSERT_TRUE(frame.picture);
  EXPECT_EQ(ReadBack(shot.Out(4)).samples, frame.picture->samples);
  EXPECT_LT(0.0, frame.seconds);
}

TEST(ExactRender, GivesColoursTimesAlphaAsTheModuleHasThem) {
  ShotFolder shot(1, 1);
  Picture picture = ReadBack(shot.In(1));
  picture.alpha = Alpha::kStraight;
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] = i % 4 == 3 ? 32768 : 40000;
  }
  PictureOutput(shot.In(1), true).Write(picture, 16);
  // No blur, so that the picture is what came in: 40000 of 65535, half seen.
  shot.input.look["mix"] = "0";
  Answers answers(PROGRAM);
  answers.render.Ask(RequestOf(shot, 1, 1));
  answers.Wait();
  ASSERT_TRUE(answers.frames.front().picture);
  EXPECT_EQ(Alpha::kPremultiplied, answers.frames.front().picture->alpha);
  EXPECT_NEAR(20000, answers.frames.front().picture->samples[0], 1);

  shot.input.look["alpha"] = "as-is";
  answers.frames.clear();
  answers.render.Ask(RequestOf(shot, 2, 1));
  answers.Wait();
  ASSERT_TRUE(answers.frames.front().picture);
  EXPECT_EQ(40000, answers.frames.front().picture->samples[0]);
}

TEST(ExactRender, EndsAFrameThatANewerOneFollows) {
  const ShotFolder shot(1, 2);
  Answers answers(
      shot.Script("case \"$*\" in *--frames=1\\ *) exec sleep 1000;; esac\n"
                  "exec " PROGRAM " \"$@\""));
  answers.render.Ask(RequestOf(shot, 1, 1));
  answers.render.Ask(RequestOf(shot, 2, 2));
  const QList<QProcess*> followed = answers.render.findChildren<QProcess*>();
  ASSERT_EQ(1, followed.size());
  QSignalSpy ended(followed.front(), &QProcess::finished);
  answers.Wait();
  ASSERT_EQ(1U, answers.frames.size());
  EXPECT_EQ(2U, answers.frames.front().serial);
  EXPECT_TRUE(answers.frames.front().picture);
  EXPECT_TRUE(!ended.isEmpty() || ended.wait(kLong));
}

TEST(ExactRender, AnswersNothingThatWasCancelled) {
  const ShotFolder shot(1, 1);
  Answers answers(shot.Script("exec sleep 1000"));
  answers.render.Ask(RequestOf(shot, 1, 1));
  answers.render.Cancel();
  EXPECT_FALSE(answers.render.IsRunning());
  const QList<QProcess*> cancelled = answers.render.findChildren<QProcess*>();
  ASSERT_EQ(1, cancelled.size());
  QSignalSpy gone(cancelled.front(), &QObject::destroyed);
  ASSERT_TRUE(gone.wait(kLong));
  EXPECT_TRUE(answers.frames.empty());
}

TEST(ExactRender, SaysThatItsProcessDied) {
  const ShotFolder shot(1, 1);
  Answers answers(shot.Script("kill -9 $$"));
  answers.render.Ask(RequestOf(shot, 3, 1));
  answers.Wait();
  EXPECT_EQ(3U, answers.frames.front().serial);
  EXPECT_FALSE(answers.frames.front().picture);
  EXPECT_TRUE(answers.frames.front().fault.contains("died"));
  EXPECT_FALSE(answers.render.IsRunning());
}

TEST(ExactRender, SaysWhatTheProgramSaysOfAFrame) {
  const ShotFolder shot(1, 1);
  shot.Break(1);
  Answers answers(PROGRAM);
  answers.render.Ask(RequestOf(shot, 1, 1));
  answers.Wait();
  EXPECT_TRUE(answers.frames.front().fault.contains("in.1.png"))
      << answers.frames.front().fault.toStdString();
}

TEST(ExactRender, RendersByTheEngineThatIsAskedFor) {
  const ShotFolder shot(1, 1);
  Answers answers(PROGRAM);
  ExactRequest request = RequestOf(shot, 1, 1);
  request.engine = "steam";
  answers.render.Ask(request);
  answers.Wait();
  EXPECT_TRUE(answers.frames.front().fault.contains("steam"));
}

TEST(ExactRender, SaysWhichProgramIsMissing) {
  const ShotFolder shot(1, 1);
  Answers answers(shot.folder / "no_program");
  answers.render.Ask(RequestOf(shot, 1, 1));
  answers.Wait();
  EXPECT_TRUE(answers.frames.front().fault.contains("no_program"));
}

}  // namespace
}  // namespace glimmerhost
