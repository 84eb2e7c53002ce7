// SPDX-License-Identifier: BSD-3-Clause
// A render by another process, whose requests for memory here are refused, is told of as it is, or
// less of it.
#include <gtest/gtest.h>

#include <QCoreApplication>
#include <QTemporaryDir>
#include <fstream>
#include <new>
#include <optional>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "host/viewer/jobs/job_progress.h"
#include "host/viewer/jobs/render_job.h"
#include "tests/host/viewer/refusals/each_refused.h"

namespace glimmerhost {
namespace {

std::string Line(int frame, const std::string& state) {
  return R"({"frame":)" + std::to_string(frame) + R"(,"state":")" + state +
         R"(","output":"/a/folder/with/a/long/name/out.0001.png","seconds":0.5,"index":1,)"
         R"("count":3,"elapsed":2,"remarks":["a sample that is not a number became 0"]})";
}

TEST(RefusedProgress, StaysAsItWasOrTakesTheLine) {
  const std::string line = Line(7, "done");
  const long count = viewer_test::RefuseEach([&](long n) {
    JobProgress progress;
    FrameReport frame;
    bool isTaken = false;
    bool wasRefused = false;
    {
      const lx_test::RefusedNew refused(n);
      try {
        isTaken = progress.Take(line, &frame);
      } catch (const std::bad_alloc&) {
      }
      wasRefused = refused.WasRefused();
    }
    EXPECT_EQ(!wasRefused, isTaken) << n;
    EXPECT_EQ(isTaken ? 1U : 0U, progress.done) << n;
    EXPECT_EQ(isTaken ? 3U : 0U, progress.count) << n;
    EXPECT_EQ(isTaken ? 7 : 0, frame.frame) << n;
    EXPECT_TRUE(progress.Take(line, &frame)) << n;
    return wasRefused;
  });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 5);
}

TEST(RefusedProgress, LeavesOtherLinesToOthersOrIsToldOfNoMemory) {
  const long count = viewer_test::RefuseEach([&](long n) {
    JobProgress progress;
    FrameReport frame;
    bool wasRefused = false;
    {
      const lx_test::RefusedNew refused(n);
      try {
        EXPECT_FALSE(progress.Take(R"({"frame":1,"state":"done","output":[{"a":{"b":[1)", &frame));
      } catch (const std::bad_alloc&) {
      }
      wasRefused = refused.WasRefused();
    }
    EXPECT_EQ(0U, progress.Seen()) << n;
    return wasRefused;
  });
  RecordProperty("refused", static_cast<int>(count));
  EXPECT_GT(count, 5);
}

class RefusedJob : public testing::Test {
 public:
  // A program that tells of these frames and ends with the code.
  std::string Program(const std::vector<std::string>& states, int code) const {
    const std::string file = folder.path().toStdString() + "/program";
    std::ofstream out(file);
    out << "#!/bin/sh\ncat <<'END'\n";
    for (std::size_t i = 0; i < states.size(); ++i) {
      out << Line(static_cast<int>(i) + 1, states[i]) << "\n";
    }
    out << "END\nexit " << code << "\n";
    out.close();
    std::filesystem::permissions(file, std::filesystem::perms::owner_all);
    return file;
  }

  // What a job comes to, of which the n-th request is refused from its first frame up to its last
  // one. What Qt itself asks for before and behind them would end in Qt.
  JobEnd Run(const std::string& program, long n, bool* wasRefused) {
    RenderJob job;
    std::optional<JobEnd> end;
    std::optional<lx_test::RefusedNew> refused;
    frames = 0;
    QObject::connect(&job, &RenderJob::Ended, [&](const JobEnd& told) { end = told; });
    QObject::connect(&job, &RenderJob::FrameTold, [&](const FrameReport& frame) {
      ++frames;
      if (frame.frame == 1) {
        refused.emplace(n);
      } else if (frame.frame == kFrames) {
        *wasRefused = refused->WasRefused();
        refused.reset();
      }
    });
    *wasRefused = true;
    job.Start(program, {"render"});
    while (!end) {
      QCoreApplication::processEvents(QEventLoop::WaitForMoreEvents);
    }
    EXPECT_FALSE(job.IsRunning());
    EXPECT_EQ(frames, job.Progress().Seen()) << n;
    return *end;
  }

  static constexpr int kFrames = 3;
  QTemporaryDir folder;
  std::size_t frames = 0;
};

TEST_F(RefusedJob, EndsWithWhatItsProcessSaid) {
  for (const int code : {kExitDone, kExitFailed}) {
    const std::string program =
        Program({"done", "skipped", code == kExitDone ? "done" : "failed"}, code);
    bool wasRefused = true;
    long n = 0;
    while (wasRefused) {
      ++n;
      const JobEnd end = Run(program, n, &wasRefused);
      EXPECT_EQ(code == kExitDone, end.isDone) << n;
      EXPECT_FALSE(end.words.isEmpty()) << n;
      EXPECT_TRUE(frames == 3 || wasRefused) << n;
      const bool countsAll = end.words.contains("3 frames");
      EXPECT_TRUE(!countsAll || frames == 3) << n << end.words.toStdString();
    }
    RecordProperty("refused", static_cast<int>(n - 1));
    EXPECT_GT(n, 5);
  }
}

}  // namespace
}  // namespace glimmerhost
