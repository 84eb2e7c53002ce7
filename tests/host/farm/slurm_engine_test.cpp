// SPDX-License-Identifier: BSD-3-Clause
// What is handed over to Slurm, by commands that take down what they are given.
#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <sstream>
#include <string>
#include <vector>

#include "tests/host/glimmerhost/shot_program.h"

namespace {

namespace fs = std::filesystem;
using host_test::Bytes;
using host_test::Outcome;
using Lines = std::vector<std::string>;

// sbatch and scancel write their arguments and the script into a folder of calls; what else they
// do, a test says.
class SlurmEngine : public host_test::ShotProgram {
 public:
  SlurmEngine() {
    fs::create_directory(commands.Path() / "calls");
    Does("sbatch", "echo 4$n");
    Does("scancel", "");
  }

  //   script  in the words of sh; n is the number of the call, from 1
  void Does(const std::string& command, const std::string& script) {
    const fs::path file = commands / command;
    std::ofstream(file) << "#!/bin/sh\ncd '" << commands.Path().string() << "'/calls\n"
                        << "n=1; while [ -e " << command << ".$n ]; do n=$((n + 1)); done\n"
                        << "printf '%s\\n' \"$@\" >" << command << ".$n\n"
                        << "for last; do :; done; [ ! -f \"$last\" ] || cp \"$last\" script.$n\n"
                        << script << '\n';
    fs::permissions(file, fs::perms::owner_all);
  }

  Outcome Submit(const std::string& options, const std::string& output = "out.@.png") {
    return host_test::RunProgram("submit '" + (folder / "in.@.png").string() + "' -o '" +
                                     (folder / output).string() +
                                     "' --engine slurm --radius 2px --chunk 2 " + options,
                                 {{"PATH", commands.Path().string() + ":/usr/bin:/bin"}});
  }

  // Of a call; sbatch's last one, its script, left out.
  Lines Arguments(const std::string& call) const {
    std::istringstream in(Bytes(commands / ("calls/" + call)));
    Lines lines;
    for (std::string line; std::getline(in, line);) {
      lines.push_back(line);
    }
    if (call.starts_with("sbatch") && !lines.empty()) {
      lines.pop_back();
    }
    return lines;
  }

  bool WasCalled(const std::string& call) const { return fs::exists(commands / ("calls/" + call)); }

  std::string Log(const std::string& name) const {
    return "--output=" + (folder / ("out.slurm-" + name)).string();
  }

  lx_test::ScratchFolder commands;
};

TEST_F(SlurmEngine, HandsOverAnArrayAndACheckThatWaitsForIt) {
  WriteShot(1, 5);
  const Outcome outcome = Submit("--threads 3 --engine exact");
  const std::string chdir = "--chdir=" + fs::current_path().string();

  EXPECT_EQ(0, outcome.code) << outcome.text;
  // A grid of 128 takes 921600 bytes and the pictures 76800; a quarter more, and 256 MiB.
  EXPECT_EQ((Lines{"--job-name=glimmerhost-out", "--ntasks=1", "--requeue", "--open-mode=append",
                   Log("%A_%a.log"), "--export=ALL", "--mem=258M", "--cpus-per-task=3", chdir,
                   "--parsable", "--array=1-3"}),
            Arguments("sbatch.1"));
  EXPECT_EQ((Lines{"--job-name=glimmerhost-out-check", "--ntasks=1", "--requeue",
                   "--open-mode=append", Log("%j.log"), "--export=ALL", "--mem=512M", chdir,
                   "--parsable", "--dependency=afterany:41"}),
            Arguments("sbatch.2"));
  EXPECT_EQ(
      "job 41: 3 chunks of at most 2 frames\n"
      "job 42: the check, when all of them have ended\n"
      "squeue --jobs=41,42 shows how they get on; scancel 41 42 ends them\n"
      "What goes wrong in chunk K is in " +
          (folder / "out.slurm-41_K.log").string() +
          ", and which frames are missing in the end in " + (folder / "out.slurm-42.log").string() +
          "\n",
      outcome.text);
  EXPECT_EQ(5, folder.FileCount());
}

// Each over what is before it, but not over what makes the job what it is.
TEST_F(SlurmEngine, PutsAPersonsOptionsBehindThoseOfTheShot) {
  WriteShot(1, 1);
  ASSERT_EQ(0, Submit("--sbatch --mem=9G --sbatch '--comment=a b' --sbatch=--array=7").code);
  const Lines arguments = Arguments("sbatch.1");
  const Lines last(arguments.end() - 6, arguments.end());
  EXPECT_EQ((Lines{"--mem=9G", "--comment=a b", "--array=7",
                   "--chdir=" + fs::current_path().string(), "--parsable", "--array=1-1"}),
            last);
}

// The scripts are run here as the farm would.
TEST_F(SlurmEngine, QuotesWhateverIsInAName) {
  WriteShot(1, 3);
  const std::string odd = "o\"dd $x `y` \\ 100%\nb";
  const Outcome outcome =
      Submit("--manifest '" + (folder / "m\n#SBATCH --wrong.json").string() + "'", odd + ".@.png");
  ASSERT_EQ(0, outcome.code) << outcome.text;

  for (const char* chunk : {"1", "2"}) {
    const Outcome ran = lx_test::RunChild("/bin/bash", {(commands / "calls/script.1").string()},
                                          {{"SLURM_ARRAY_TASK_ID", chunk}});
    EXPECT_EQ(0, ran.code) << ran.text;
  }
  const Outcome check = lx_test::RunChild("/bin/bash", {(commands / "calls/script.2").string()});
  EXPECT_EQ("3 frames are as they were written\n", check.text);
  EXPECT_TRUE(fs::exists(folder / (odd + ".3.png")));
  EXPECT_EQ(std::string::npos, Bytes(commands / "calls/script.1").find("\n#SBATCH"));
}

// A backslash takes the percent signs their meaning.
TEST_F(SlurmEngine, SharesALogWhereItsNameCannotHaveNumbers) {
  WriteShot(1, 1);
  const Outcome outcome = Submit("", "a\\b 1%.@.png");
  EXPECT_EQ("--output=" + folder.Path().string() + "/a\\\\b 1%.slurm-all.log",
            Arguments("sbatch.1").at(4));
  EXPECT_NE(std::string::npos, outcome.text.find("/a\\b 1%.slurm-all.log\n")) << outcome.text;

  ASSERT_EQ(0, Submit("", "b 1%.@.png").code);
  EXPECT_EQ("--output=" + folder.Path().string() + "/b 1%%.slurm-%A_%a.log",
            Arguments("sbatch.3").at(4));
}

TEST_F(SlurmEngine, TakesTheNumberThatAClusterOfSeveralGives) {
  WriteShot(1, 1);
  Does("sbatch", "echo 'sbatch: warning: slow' >&2; echo '7;north'");
  const Outcome outcome = Submit("");
  EXPECT_EQ(0, outcome.code) << outcome.text;
  EXPECT_EQ("--dependency=afterany:7", Arguments("sbatch.2").back());
  EXPECT_EQ(0U, outcome.text.find("glimmerhost: sbatch: warning: slow\n")) << outcome.text;
}

TEST_F(SlurmEngine, SaysWhatSbatchSays) {
  WriteShot(1, 1);
  Does("sbatch", "echo 'sbatch: error: no account' >&2; echo 'sbatch: error: go' >&2; exit 1");
  const Outcome outcome = Submit("");
  EXPECT_EQ(1, outcome.code);
  EXPECT_EQ("glimmerhost: sbatch took no job: sbatch: error: no account; sbatch: error: go\n",
            outcome.text);
  EXPECT_FALSE(WasCalled("sbatch.2"));
  EXPECT_FALSE(WasCalled("scancel.1"));
  EXPECT_EQ(1, folder.FileCount());

  Does("sbatch", "");
  EXPECT_EQ("glimmerhost: sbatch took no job: it said nothing\n", Submit("").text);
}

TEST_F(SlurmEngine, TakesTheArrayBackWhereTheCheckIsRefused) {
  WriteShot(1, 1);
  const std::string refusesTheCheck = "[ $n = 1 ] && echo 41 || { echo full >&2; exit 1; }";
  Does("sbatch", refusesTheCheck);
  Outcome outcome = Submit("");
  EXPECT_EQ(1, outcome.code);
  EXPECT_EQ((Lines{"41"}), Arguments("scancel.1"));
  EXPECT_NE(std::string::npos,
            outcome.text.find("glimmerhost: sbatch took no job: full; job 41 has been cancelled\n"))
      << outcome.text;
  EXPECT_EQ(1, folder.FileCount());

  fs::remove_all(commands.Path() / "calls");
  fs::create_directory(commands.Path() / "calls");
  Does("scancel", "echo denied >&2; exit 1");
  outcome = Submit("");
  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos,
            outcome.text.find("full; and job 41 could not be cancelled: denied\n"))
      << outcome.text;
}

TEST_F(SlurmEngine, IsMissedWhereThereIsNoSlurm) {
  WriteShot(1, 1);
  fs::remove(commands / "sbatch");
  const Outcome outcome =
      host_test::RunProgram("submit '" + (folder / "in.@.png").string() + "' -o '" +
                                (folder / "o.@.png").string() + "' --engine slurm",
                            {{"PATH", commands.Path().string()}});
  EXPECT_EQ(1, outcome.code);
  EXPECT_EQ(
      "glimmerhost: --engine slurm: sbatch: not found; it is one of Slurm's, "
      "which this machine must have to hand jobs over\n",
      outcome.text);
}

TEST_F(SlurmEngine, HasTheMemoryNamedWhereNoPictureIsThereYet) {
  const Outcome outcome = Submit("--frames 1-3");
  EXPECT_EQ(3, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("in.1.png: not found, so the")) << outcome.text;
  EXPECT_EQ(0, Submit("--frames 1-3 --sbatch --mem=4G").code);
  EXPECT_TRUE(WasCalled("sbatch.2"));
}

TEST_F(SlurmEngine, ShowsWhatItWouldHandOver) {
  WriteShot(1, 3);
  const Outcome outcome = Submit("--dry-run");
  EXPECT_EQ(0, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("# chunk 2 of 2: frames 3, manifest "));
  EXPECT_NE(std::string::npos, outcome.text.find(" --array=1-2 <<'END_OF_SCRIPT'\n#!/bin/bash\n"));
  EXPECT_NE(std::string::npos, outcome.text.find(" --chunk=\"$SLURM_ARRAY_TASK_ID\"/2 "));
  EXPECT_NE(std::string::npos, outcome.text.find(" --dependency=afterany:JOB <<"));
  EXPECT_FALSE(WasCalled("sbatch.1"));
  EXPECT_EQ(3, folder.FileCount());
}

TEST_F(SlurmEngine, RefusesOptionsThatAreNone) {
  WriteShot(1, 1);
  const std::string submit = "submit '" + (folder / "in.@.png").string() + "' -o '" +
                             (folder / "out.@.png").string() + "' --engine slurm ";
  ExpectRefusal(submit + "--sbatch long", 2, "--sbatch must be an option of sbatch in one");
  ExpectRefusal(submit + "--jobs 2", 2, "--jobs 2 needs --engine local");
  ExpectRefusal(submit + "--threads 0", 2, "--threads must be a whole number");
}

}  // namespace
