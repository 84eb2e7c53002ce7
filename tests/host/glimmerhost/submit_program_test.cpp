// SPDX-License-Identifier: BSD-3-Clause
// Shots in chunks, as a person submits them to this machine.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <string>
#include <system_error>

#include "tests/host/glimmerhost/shot_program.h"

namespace {

namespace fs = std::filesystem;
using host_test::Bytes;
using host_test::kAnimated;
using host_test::Outcome;
using host_test::RunProgram;

class SubmitProgram : public host_test::ShotProgram {
 public:
  std::string Submit(const std::string& output, const std::string& options) {
    return "submit '" + (folder / "in.@.png").string() + "' -o '" + (folder / output).string() +
           "' " + options;
  }

  std::string ChunkManifest(const std::string& place) const {
    return "out.manifest." + place + ".jsonl";
  }

  bool IsThere(const std::string& name) const { return fs::exists(folder / name); }
};

TEST_F(SubmitProgram, GivesTheBytesOfOneRender) {
  WriteShot(1, 7);
  const std::string options = kAnimated;
  ASSERT_EQ(0, RunProgram(Shot("whole.@.png", options)).code);

  for (const std::string way : {"--chunk 3", "--chunk 2 --jobs 3", "--chunk 100"}) {
    const Outcome outcome =
        RunProgram(Submit("out.@.png", options + "--overwrite --progress lines " + way));
    EXPECT_EQ(0, outcome.code) << outcome.text;
    EXPECT_NE(std::string::npos, outcome.text.find(" (7 of 7): ")) << outcome.text;
    EXPECT_NE(std::string::npos, outcome.text.find("7 frames are as they were written\n"));
    for (int frame = 1; frame <= 7; ++frame) {
      const std::string end = "." + std::to_string(frame) + ".png";
      EXPECT_EQ(Bytes(folder / ("whole" + end)), Bytes(folder / ("out" + end))) << way << frame;
    }
  }
}

TEST_F(SubmitProgram, WritesAManifestForEachChunk) {
  WriteShot(1, 5);
  ASSERT_EQ(0, RunProgram(Submit("out.@.png", "--radius 2px --chunk 2")).code);
  for (const char* place : {"0001-of-0003", "0002-of-0003", "0003-of-0003"}) {
    EXPECT_TRUE(IsThere(ChunkManifest(place))) << place;
  }
  EXPECT_EQ(5 + 5 + 3, folder.FileCount());

  const std::string manifest = " --manifest '" + (folder / "all of it.json").string() + "'";
  ASSERT_EQ(0, RunProgram(Submit("named.@.png", "--radius 2px --chunk 9" + manifest)).code);
  EXPECT_TRUE(IsThere("all of it.0001-of-0001.json"));
}

TEST_F(SubmitProgram, TakesAChunkForEachProcess) {
  WriteShot(1, 4);
  const std::string text = RunProgram(Submit("out.@.png", "--radius 2px --jobs 4 --dry-run")).text;
  EXPECT_NE(std::string::npos, text.find("# chunk 4 of 4: frames 4, manifest ")) << text;
}

// What is shown is there to be pasted into a shell.
TEST_F(SubmitProgram, ShowsNoLineThatANameHasMade) {
  WriteShot(1, 2);
  std::error_code error;
  fs::create_directory(folder / "a\ntouch hit\n", error);
  if (error) {
    GTEST_SKIP() << "no names with ends of lines here";
  }
  const Outcome outcome = RunProgram(Submit("a\ntouch hit\n/out.@.png", "--radius 2px --dry-run"));
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("a\\012touch hit")) << outcome.text;
  EXPECT_EQ(std::string::npos, outcome.text.find("\ntouch")) << outcome.text;
}

TEST_F(SubmitProgram, GoesOnWhereAFrameWasRenderedAnewByAnotherCut) {
  WriteShot(1, 4);
  ASSERT_EQ(0, RunProgram(Submit("out.@.png", "--radius 2px --chunk 2")).code);
  ASSERT_EQ(0,
            RunProgram(Submit("out.@.png", "--radius 3px --chunk 9 --frames 3 --overwrite")).code);
  const Outcome outcome = RunProgram(Submit("out.@.png", "--radius 2px --chunk 2 --skip-existing"));
  EXPECT_EQ(0, outcome.code) << outcome.text;
  ASSERT_EQ(0, RunProgram(Shot("once.@.png", "--radius 2px")).code);
  EXPECT_EQ(Bytes(folder / "once.3.png"), Bytes(folder / "out.3.png"));
}

TEST_F(SubmitProgram, StopsBehindTheChunkOfAFrameThatFails) {
  WriteShot(1, 6);
  std::ofstream(folder / "in.3.png") << "no picture";
  Outcome outcome = RunProgram(Submit("out.@.png", "--radius 2px --chunk 2"));

  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("glimmerhost: frame 3: ")) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("1 of 6 frames failed (3), 2 done;"))
      << outcome.text;
  EXPECT_FALSE(IsThere("out.4.png"));
  EXPECT_FALSE(IsThere("out.5.png"));

  outcome = RunProgram(Submit("out.@.png", "--radius 2px --chunk 2 --skip-existing --keep-going"));
  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("1 of 6 frames failed (3), 5 done\n"))
      << outcome.text;

  WriteShot(3, 3);
  outcome = RunProgram(Submit("out.@.png", "--radius 2px --chunk 2 --skip-existing"));
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("6 frames are as they were written\n"));
}

TEST_F(SubmitProgram, HasACodeOfItsOwnForAMissingFrame) {
  WriteShot(1, 3);
  const Outcome outcome = RunProgram(Submit("out.@.png", "--frames 1-4 --chunk 2 --radius 2px"));
  EXPECT_EQ(3, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("1 of 4 frames failed (4), 3 done\n"))
      << outcome.text;
}

TEST_F(SubmitProgram, NamesTheFrameAtWhichAProcessEndedWithoutAWord) {
  WriteShot(1, 2);
  const Outcome outcome =
      RunProgram(Submit("out.@.png", "--radius 2px --chunk 1 --module '" NO_MODULE "'"));
  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("not a module")) << outcome.text;
  EXPECT_NE(std::string::npos,
            outcome.text.find("frame 1: the process of chunk 1 ended with exit code 1\n"))
      << outcome.text;
}

TEST_F(SubmitProgram, ReportsToMachinesAsARenderDoes) {
  WriteShot(1, 3);
  const std::string text =
      RunProgram(Submit("out.@.png", "--radius 2px --chunk 1 --progress json")).text;
  EXPECT_NE(std::string::npos, text.find(R"({"frame":2,"state":"done",)")) << text;
  EXPECT_NE(std::string::npos, text.find(R"("index":3,"count":3,)")) << text;
  EXPECT_NE(std::string::npos, text.find(R"({"done":3,"skipped":0,)")) << text;
}

TEST_F(SubmitProgram, SaysNothingIfToldSo) {
  WriteShot(1, 2);
  EXPECT_EQ("", RunProgram(Submit("out.@.png", "--radius 2px --chunk 1 --quiet")).text);
}

// Values that look like options, and what a shell would take apart.
TEST_F(SubmitProgram, GivesTheChunksWhatItWasGiven) {
  WriteShot(1, 2);
  const std::string frames = "'" + (folder / "odd $x;&^`.@.png").string() + "' ";
  const std::string options =
      "--shape polygon --rotation -30 --match --set PRM_Sides=5 "
      "--emph-alpha=off --radius 'first=2px; last=4px' ";
  ASSERT_EQ(0, RunProgram("render '" + (folder / "in.@.png").string() + "' " + options + "-o '" +
                          (folder / "whole.@.png").string() + "'")
                   .code);
  fs::rename(folder / "in.1.png", folder / "-in 100%.1.png");
  fs::rename(folder / "in.2.png", folder / "-in 100%.2.png");
  const Outcome outcome = RunProgram("submit '" + (folder / "-in 100%.@.png").string() + "' " +
                                     options + "--chunk 1 -o " + frames);
  ASSERT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ(Bytes(folder / "whole.2.png"), Bytes(folder / "odd $x;&^`.2.png"));
}

TEST_F(SubmitProgram, MixesNothingWithWhatIsThereUnlessTold) {
  WriteShot(1, 2);
  ASSERT_EQ(0, RunProgram(Submit("out.@.png", "--radius 2px --chunk 1")).code);
  ExpectRefusal(Submit("out.@.png", "--radius 2px"), 1,
                "out.1.png: exists already; --skip-existing goes on with it");
  fs::remove(folder / "out.1.png");
  fs::remove(folder / "out.2.png");
  ExpectRefusal(Submit("out.@.png", "--radius 2px --chunk 1"), 1,
                "0001-of-0002.jsonl: exists already; --skip-existing goes on");
  EXPECT_EQ(0, RunProgram(Submit("out.@.png", "--radius 2px --chunk 1 --overwrite")).code);
  const std::string before = Bytes(folder / "out.2.png");
  EXPECT_EQ(0, RunProgram(Submit("out.@.png", "--radius 9px --chunk 1 --overwrite")).code);
  EXPECT_NE(before, Bytes(folder / "out.2.png"));
}

TEST_F(SubmitProgram, CanBeCutAnewBetweenTwoRuns) {
  WriteShot(1, 5);
  ASSERT_EQ(0, RunProgram(Submit("out.@.png", "--radius 2px --frames 1-4 --chunk 2")).code);
  const Outcome outcome =
      RunProgram(Submit("out.@.png", "--radius 2px --frames 1-5 --chunk 1 --skip-existing"));
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_NE(std::string::npos, outcome.text.find("5 frames are as they were written\n"));
}

TEST_F(SubmitProgram, RendersAgainWhereTheLookHasChanged) {
  WriteShot(1, 4);
  ASSERT_EQ(0, RunProgram(Submit("out.@.png", "--radius 2px --chunk 2")).code);
  ASSERT_EQ(0, RunProgram(Shot("whole.@.png", "--radius 5px")).code);
  // With the same cut, and with another.
  for (const char* chunk : {"--chunk 2", "--chunk 3"}) {
    const Outcome outcome =
        RunProgram(Submit("out.@.png", std::string("--radius 5px --skip-existing ") + chunk));
    EXPECT_EQ(0, outcome.code) << outcome.text;
    for (int frame = 1; frame <= 4; ++frame) {
      const std::string end = "." + std::to_string(frame) + ".png";
      EXPECT_EQ(Bytes(folder / ("whole" + end)), Bytes(folder / ("out" + end))) << chunk << frame;
    }
    ASSERT_EQ(0, RunProgram(Submit("out.@.png", "--radius 2px --skip-existing --chunk 2")).code);
  }
}

TEST_F(SubmitProgram, ShowsWhatItWouldRunAndRunsNothing) {
  WriteShot(1, 3);
  const std::string text = RunProgram(Submit("out.@.png", "--radius 2px --chunk 2 --dry-run")).text;
  EXPECT_NE(std::string::npos, text.find("# chunk 1 of 2: frames 1-2, manifest ")) << text;
  EXPECT_NE(std::string::npos, text.find(" --radius=2px --skip-existing --chunk=2/2 ")) << text;
  EXPECT_NE(std::string::npos, text.find(" check --frames=1-3 -- ")) << text;
  EXPECT_EQ(3, folder.FileCount());
}

// Files may come and go until the last chunk has begun.
TEST_F(SubmitProgram, GivesEveryChunkTheShotThatItFound) {
  WriteShot(1, 4);
  const std::string moves = "--radius 'first=2px; last=4px' ";
  const std::string dryRun = "--frames 2-3 --chunk 1 --dry-run";
  std::string text = RunProgram(Submit("out.@.png", moves + dryRun)).text;
  EXPECT_NE(std::string::npos, text.find(" --shot=1-4 ")) << text;
  EXPECT_EQ(text.find(" --shot"), text.rfind(" --shot", text.find(" --chunk=1/2"))) << text;
  text = RunProgram(Submit("out.@.png", moves + "--shot 1-9 " + dryRun)).text;
  EXPECT_NE(std::string::npos, text.find(" --shot=1-9 ")) << text;
  text = RunProgram(Submit("out.@.png", "--radius 2px " + dryRun)).text;
  EXPECT_EQ(std::string::npos, text.find("--shot")) << text;

  ExpectRefusal(Submit("out.@.png", moves + "--frames 3-5"), 3, "frame 5 is not in the shot 1-4");
  const Outcome outcome = RunProgram(Submit("out.@.png", "--radius '2=2px; 8=4px' --chunk 1"));
  const std::string line = "glimmerhost: keyframes are at frames 8, which are not in the shot";
  EXPECT_NE(std::string::npos, outcome.text.find(line)) << outcome.text;
  EXPECT_EQ(outcome.text.find(line), outcome.text.rfind(line)) << outcome.text;
}

TEST_F(SubmitProgram, SavesParametersOnce) {
  WriteShot(1, 2);
  const std::string save = " --save-params '" + (folder / "look.toml").string() + "'";
  const Outcome outcome = RunProgram(Submit("out.@.png", "--radius 3px --chunk 1" + save));
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_NE(std::string::npos, Bytes(folder / "look.toml").find("radius")) << outcome.text;
}

TEST_F(SubmitProgram, RefusesBeforeAnythingIsRun) {
  WriteShot(1, 2);
  ExpectRefusal(Submit("out.@.png", "--engine cloud"), 2, "--engine must be local or");
  ExpectRefusal(Submit("out.@.png", "--chunk 0"), 2, "--chunk must be a whole number");
  ExpectRefusal(Submit("out.@.png", "--chunk 1/2"), 2, "--chunk must be a whole number");
  ExpectRefusal(Submit("out.@.png", "--jobs none"), 2, "--jobs must be a whole number");
  ExpectRefusal(Submit("out.@.png", "--sbatch --partition=x"), 2,
                "--sbatch --partition=x needs --engine slurm");
  ExpectRefusal(Submit("out.@.png", "--radius wide"), 2, "--radius must be ");
  ExpectRefusal(Submit("out.png", ""), 2,
                "-o must be a name with a place for the numbers of 2 frames");
  ExpectRefusal(Submit("none/out.@.png", ""), 1, "none: not found");
  ExpectRefusal(Submit("out.@.png", "--manifest '" + (folder / "none/m.json").string() + "'"), 1,
                "none: not found");
  ExpectRefusal("submit - -o out.png", 2, "INPUT must be the name of files");
}

}  // namespace
