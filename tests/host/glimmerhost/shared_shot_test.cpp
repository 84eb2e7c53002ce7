// SPDX-License-Identifier: BSD-3-Clause
// A shot that several programs render, of which some are killed.
#include <gtest/gtest.h>
#include <sched.h>
#include <signal.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <functional>
#include <iterator>
#include <memory>
#include <set>
#include <string>
#include <vector>

#include "host/render/frame_line.h"
#include "host/shots/frame_claim.h"
#include "host/shots/manifest.h"
#include "tests/host/glimmerhost/running_program.h"
#include "tests/host/glimmerhost/shot_program.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::FrameClaim;
using host_test::Bytes;
using host_test::FileWatch;
using host_test::kAnimated;
using host_test::Outcome;
using host_test::RunningProgram;
using host_test::RunProgram;

constexpr int kFrames = 10;

class SharedShot : public host_test::ShotProgram {
 public:
  void SetUp() override {
    WriteShot(1, kFrames);
    ASSERT_EQ(0, RunProgram(Shot("whole.@.png", kAnimated)).code);
    fs::create_directory(folder / "out");
  }

  // All that is asked of each of the programs.
  std::string Share(const std::string& output = "out") const {
    return "render '" + (folder / "in.@.png").string() + "' -o '" +
           (folder / output / "@.png").string() + "' " + kAnimated +
           "--skip-existing --progress json --manifest '" + Manifest().string() + "'";
  }
  fs::path Manifest() const { return folder / "shot.jsonl"; }
  fs::path Output(int frame) const { return folder / "out" / (std::to_string(frame) + ".png"); }
  std::string Said(const std::string& name) const { return (folder / name).string(); }

  // Polls, as no system tells of all that a test waits for.
  static void Await(const std::function<bool()>& holds) {
    while (!holds()) {
      sched_yield();
    }
  }
  int OutputCount() const {
    int count = 0;
    for (int frame = 1; frame <= kFrames; ++frame) {
      count += fs::exists(Output(frame)) ? 1 : 0;
    }
    return count;
  }
  int Claims() const {
    return static_cast<int>(
        std::count_if(fs::directory_iterator(folder / "out"), fs::directory_iterator(),
                      [](const auto& entry) { return entry.path().extension() == ".claim"; }));
  }

  // The frames that a program says to have rendered.
  std::set<int> Done(const std::string& name) const {
    std::set<int> done;
    std::ifstream in(folder / name);
    for (std::string line; std::getline(in, line);) {
      const auto told = glimmerhost::ParseFrameLine(line);
      if (told && told->report.state == glimmerhost::FrameState::kDone) {
        done.insert(told->report.frame);
      }
    }
    return done;
  }

  void ExpectWhole() const {
    for (int frame = 1; frame <= kFrames; ++frame) {
      EXPECT_EQ(Bytes(folder / ("whole." + std::to_string(frame) + ".png")), Bytes(Output(frame)))
          << frame;
    }
    // No claim, and nothing unfinished.
    EXPECT_EQ(kFrames,
              std::distance(fs::directory_iterator(folder / "out"), fs::directory_iterator()));
    EXPECT_EQ(0, RunProgram("check '" + Manifest().string() + "' --frames 1-10").code);
  }
};

// Stopped at each of several places, and resumed.
TEST_F(SharedShot, GoesOnAfterAKillAsIfNothingHadHappened) {
  for (const int outputs : {0, 1, 4}) {
    std::ofstream(Manifest(), std::ios::app).close();
    {
      const FileWatch watch(folder / "out");
      const RunningProgram program(Share(), {}, Said("killed"));
      watch.WaitFor(".claim");
      Await([&] { return OutputCount() >= outputs; });
      program.Send(SIGKILL);
      program.Wait();
    }
    EXPECT_EQ(0, RunProgram(Share()).code);
    ExpectWhole();
    fs::remove_all(folder / "out");
    fs::create_directory(folder / "out");
    fs::remove(Manifest());
  }
}

// The look has changed since: all of it is done again, by whoever wrote it.
TEST_F(SharedShot, IsRenderedAgainWhereTheLookHasChanged) {
  ASSERT_EQ(0, RunProgram(Share() + " --sides 3").code);

  ASSERT_EQ(0, RunProgram(Share()).code);

  ExpectWhole();
  EXPECT_EQ(std::size_t{2 * kFrames}, glimmerhost::ReadManifestLines(Manifest()).size());
  ASSERT_EQ(0, RunProgram(Share()).code);
  EXPECT_EQ(std::size_t{2 * kFrames}, glimmerhost::ReadManifestLines(Manifest()).size());
}

// The last five are kept from the one, which waits for them; the other comes when they are free.
TEST_F(SharedShot, IsPartedAmongProgramsThatRenderItAtOnce) {
  std::vector<std::unique_ptr<FrameClaim>> kept;
  for (int frame = 6; frame <= kFrames; ++frame) {
    kept.push_back(FrameClaim::Try(Output(frame)));
  }
  const RunningProgram one(Share(), {}, Said("one"));
  Await([&] { return OutputCount() == 5 && Claims() == 5; });
  one.Stop();
  kept.clear();
  const RunningProgram another(Share(), {}, Said("another"));
  EXPECT_EQ(0, another.Wait());
  one.Send(SIGCONT);
  EXPECT_EQ(0, one.Wait());

  ExpectWhole();
  EXPECT_EQ((std::set<int>{1, 2, 3, 4, 5}), Done("one"));
  EXPECT_EQ((std::set<int>{6, 7, 8, 9, 10}), Done("another"));
  EXPECT_EQ(std::size_t{kFrames}, glimmerhost::ReadManifestLines(Manifest()).size());
}

// Nobody holds them up: who does which frame is chance, and each is done once.
TEST_F(SharedShot, IsRenderedOnceHoweverManyProgramsRace) {
  std::vector<std::unique_ptr<RunningProgram>> programs;
  for (int i = 0; i < 4; ++i) {
    programs.push_back(
        std::make_unique<RunningProgram>(Share(), std::vector<int>(), Said(std::to_string(i))));
  }
  std::size_t done = 0;
  for (std::size_t i = 0; i < programs.size(); ++i) {
    EXPECT_EQ(0, programs[i]->Wait());
    done += Done(std::to_string(i)).size();
  }

  ExpectWhole();
  EXPECT_EQ(std::size_t{kFrames}, done);
  EXPECT_EQ(std::size_t{kFrames}, glimmerhost::ReadManifestLines(Manifest()).size());
}

// The one is stopped with frames in work, the other waits for these, and then the one is killed.
TEST_F(SharedShot, IsDoneByOneProgramWhereAnotherIsKilledInItsFrames) {
  for (int held = 0; held == 0;) {
    const FileWatch watch(folder / "out");
    const RunningProgram one(Share(), {}, Said("one"));
    watch.WaitFor(".claim");
    one.Stop();
    held = Claims();
    if (held == 0) {
      // It was faster.
      one.Send(SIGKILL);
      one.Wait();
      fs::remove_all(folder / "out");
      fs::create_directory(folder / "out");
      fs::remove(Manifest());
      continue;
    }
    const RunningProgram another(Share(), {}, Said("another"));
    Await([&] { return OutputCount() >= kFrames - held; });
    one.Send(SIGKILL);
    one.Wait();

    EXPECT_EQ(0, another.Wait());

    ExpectWhole();
  }
}

// The same folder under another name, as machines have it that share one. What holds the claim is a
// process that knows nothing of the other name.
TEST_F(SharedShot, IsSharedOverAnotherMount) {
  fs::create_directory(folder / "there");
  const std::string mount =
      "mount --bind '" + (folder / "out").string() + "' '" + (folder / "there").string() + "'";
  std::ofstream(folder / "mount.sh") << mount << '\n';
  const std::string script = (folder / "mount.sh").string();
  if (lx_test::RunChild("/bin/sh", {"-c", "unshare -rm sh '" + script + "'"}).code != 0) {
    GTEST_SKIP() << "this machine lets no test mount a folder";
  }
  std::ofstream(folder / "mount.sh", std::ios::app)
      << "exec '" PROGRAM "' " << Share("there") << " --frames 1-3 --shot 1-10\n";
  auto claim = FrameClaim::Try(Output(2));
  ASSERT_TRUE(claim);
  const RunningProgram there("-rm sh '" + script + "'", {}, Said("there.log"), "unshare");
  Await([&] { return fs::exists(Output(1)) && fs::exists(Output(3)); });
  Await([&] { return Claims() == 1; });
  EXPECT_FALSE(fs::exists(Output(2)));
  claim = nullptr;

  EXPECT_EQ(0, there.Wait());

  EXPECT_EQ((std::set<int>{1, 2, 3}), Done("there.log"));
  EXPECT_EQ(Bytes(folder / "whole.2.png"), Bytes(Output(2)));
  EXPECT_EQ(0, Claims());
}

// Without a manifest nobody can tell what made a frame.
TEST_F(SharedShot, SaysOnceThatNothingIsKnownWithoutAManifest) {
  ASSERT_EQ(0, RunProgram(Shot("a.@.png", "--radius 2px --frames 1-2")).code);
  const Outcome outcome = RunProgram(Shot("a.@.png", "--radius 9px --skip-existing --quiet"));
  EXPECT_EQ(0, outcome.code);
  EXPECT_EQ(
      "glimmerhost: 2 frames were there already; without --manifest nothing is known of how\n",
      outcome.text);
}

// It cannot end by itself, as one frame is kept from it.
TEST_F(SharedShot, LeavesNoClaimOnASignal) {
  const auto kept = FrameClaim::Try(Output(kFrames));
  const FileWatch watch(folder / "out");
  const RunningProgram program(Share(), {}, Said("one"));
  watch.WaitFor(".claim");
  program.Send(SIGTERM);
  EXPECT_EQ(143, program.Wait());
  EXPECT_EQ(1, Claims());
}

}  // namespace
