// SPDX-License-Identifier: BSD-3-Clause
// What is left of an output whose program was ended, or whose disk was full.
#include <gtest/gtest.h>
#include <signal.h>
#include <sys/resource.h>
#include <unistd.h>

#include <cstdint>
#include <cstdlib>
#include <filesystem>
#include <fstream>
#include <string>

#include "host/pictures/picture_file.h"
#include "host/support/child_process.h"
#include "host/support/failure.h"
#include "host/support/temporary_file.h"
#include "tests/host/glimmerhost/program.h"
#include "tests/host/glimmerhost/running_program.h"

namespace {

namespace fs = std::filesystem;
using host_test::FileWatch;
using host_test::Picture;
using host_test::Program;
using host_test::RunningProgram;
using host_test::RunProgram;

class EndedProgram : public Program {
 public:
  // A program that is ended at once has awaited no thread, which is meant.
  static void SetUpTestSuite() {
    const char* const options = std::getenv("TSAN_OPTIONS");
    setenv("TSAN_OPTIONS",
           (std::string(options == nullptr ? "" : options) + ":report_thread_leaks=0").c_str(), 1);
  }

  // A render whose output takes a while to be written: noise, which is slow to deflate.
  std::string LongRender() {
    const fs::path input = inputs / "in.tif";
    Picture picture;
    picture.width = 1400;
    picture.height = 1000;
    picture.samples.resize(picture.PixelCount() * 4);
    std::uint32_t state = 1;
    for (std::uint16_t& sample : picture.samples) {
      state = state * 1664525U + 1013904223U;
      sample = static_cast<std::uint16_t>(state >> 16U);
    }
    glimmerhost::PictureOutput(input, true).Write(picture, 16);
    return Render(input, "out.png", "--radius 0.3px");
  }

  lx_test::ScratchFolder inputs;
};

TEST_F(EndedProgram, LeavesNothingOnASignalAndSaysWhichByItsCode) {
  const std::string render = LongRender();
  for (const int number : {SIGTERM, SIGINT, SIGHUP}) {
    const FileWatch watch(folder.Path());
    const RunningProgram program(render);
    watch.WaitForOne();
    program.Send(number);
    EXPECT_EQ(128 + number, program.Wait());
    EXPECT_EQ(0, folder.FileCount()) << number;
  }
}

TEST_F(EndedProgram, LeavesTheOldFileOnASignal) {
  const std::string render = LongRender() + " --overwrite";
  std::ofstream(folder / "out.png") << "old";
  const FileWatch watch(folder.Path());
  const RunningProgram program(render);
  watch.WaitForOne();
  program.Send(SIGTERM);
  EXPECT_EQ(143, program.Wait());
  EXPECT_EQ(1, folder.FileCount());
  EXPECT_EQ(3U, fs::file_size(folder / "out.png"));
}

// As nohup and shells start what runs in the background.
TEST_F(EndedProgram, GoesOnAtASignalThatItWasStartedToIgnore) {
  const std::string render = LongRender();
  const FileWatch watch(folder.Path());
  const RunningProgram program(render, {SIGHUP, SIGINT});
  watch.WaitForOne();
  program.Send(SIGHUP);
  program.Send(SIGINT);
  EXPECT_EQ(0, program.Wait());
  EXPECT_TRUE(fs::exists(folder / "out.png"));
}

TEST_F(EndedProgram, LeavesToItsSuccessorWhatItCannotRemoveItself) {
  const std::string render = LongRender();
  {
    const FileWatch watch(folder.Path());
    const RunningProgram program(render);
    watch.WaitForOne();
    program.Send(SIGKILL);
    EXPECT_EQ(-SIGKILL, program.Wait());
  }
  ASSERT_EQ(1, folder.FileCount());
  ASSERT_FALSE(fs::exists(folder / "out.png"));

  EXPECT_EQ(0, RunProgram(render).code);

  EXPECT_EQ(1, folder.FileCount());
  EXPECT_TRUE(fs::exists(folder / "out.png"));
}

TEST_F(EndedProgram, IsNotTakenForEndedWhileItLives) {
  const fs::path output = folder / "a.exr";
  std::string name;
  {
    const glimmerhost::TemporaryFile file(output);
    name = file.Path().string();
  }
  const std::string own = std::to_string(getpid());
  name.replace(name.rfind(own), own.size(), std::to_string(getppid()));
  std::ofstream(name) << "x";

  { const glimmerhost::TemporaryFile file(output); }

  EXPECT_TRUE(fs::exists(name));
}

// Of a process that went on, at least the output would be left that it was at.
TEST_F(EndedProgram, EndsTheProcessesOfItsChunks) {
  const std::string render = LongRender();
  const std::string submit = "submit" + render.substr(render.find(' ')) + " --frames 1";
  for (const int number : {SIGTERM, SIGINT}) {
    const FileWatch watch(folder.Path());
    const RunningProgram program(submit);
    watch.WaitFor(".png");
    program.Send(number);
    EXPECT_EQ(128 + number, program.Wait());
    // The next round would wait for an output that is there already.
    ASSERT_EQ(1, folder.FileCount());
    ASSERT_TRUE(fs::remove(folder / "out.manifest.0001-of-0001.jsonl"));
  }
}

// Whoever waited for its end would wait longer than a test may.
TEST(StartedProgram, EndsWithItsObject) {
  std::string id;
  {
    glimmerhost::ChildProcess child("sh", {"-c", "echo $$; exec sleep 1000"});
    ASSERT_TRUE(child.ReadLine(&id));
    ASSERT_EQ(0, kill(std::stoi(id), 0));
  }

  EXPECT_EQ(-1, kill(std::stoi(id), 0));
}

// No file of this process may grow beyond so many bytes.
class FileLimit {
 public:
  explicit FileLimit(std::uintmax_t bytes) {
    signal(SIGXFSZ, SIG_IGN);
    getrlimit(RLIMIT_FSIZE, &before_);
    rlimit limit = before_;
    limit.rlim_cur = bytes;
    setrlimit(RLIMIT_FSIZE, &limit);
  }
  ~FileLimit() {
    setrlimit(RLIMIT_FSIZE, &before_);
    signal(SIGXFSZ, SIG_DFL);
  }
  FileLimit(const FileLimit&) = delete;
  FileLimit& operator=(const FileLimit&) = delete;

 private:
  rlimit before_{};
};

class FullDisk : public Program {};

// Libraries buffer what they write, and some do not look whether the last of it got there.
TEST_F(FullDisk, IsAFailureThatLeavesNothingHoweverLittleIsMissing) {
  Picture picture;
  picture.width = 100;
  picture.height = 80;
  picture.samples.assign(picture.PixelCount() * 4, 0);
  for (std::size_t i = 0; i < picture.samples.size(); ++i) {
    picture.samples[i] = static_cast<std::uint16_t>(i * i * 7919);
  }
  for (const char* ending : {".png", ".tif", ".exr", ".dpx", ".jpg", ".tga", ".bmp", ".ppm", ".hdr",
                             ".iff", ".webp", ".jp2"}) {
    const fs::path whole = folder / (std::string("whole") + ending);
    glimmerhost::PictureOutput(whole, true).Write(picture, 16);
    const std::uintmax_t size = fs::file_size(whole);
    const int files = folder.FileCount();
    for (const std::uintmax_t limit : {size - 1, size - 100, size / 2, std::uintmax_t{10}}) {
      const FileLimit full(limit);
      EXPECT_THROW(glimmerhost::PictureOutput(folder / (std::string("part") + ending), true)
                       .Write(picture, 16),
                   glimmerhost::Failure)
          << ending << " " << limit << " of " << size;
      EXPECT_EQ(files, folder.FileCount()) << ending;
    }
  }
}

TEST_F(FullDisk, EndsTheProgramInOneLine) {
  const fs::path input = WriteInput("in.png", 200, 200);
  const lx_test::Outcome outcome = lx_test::RunChild(
      "/bin/sh", {"-c", "ulimit -f 16 && exec " PROGRAM " " + Render(input, "out.png")});

  EXPECT_EQ(1, outcome.code);
  EXPECT_NE(std::string::npos, outcome.text.find("out.png: cannot be written: "));
  EXPECT_EQ(outcome.text.size() - 1, outcome.text.find('\n')) << outcome.text;
  EXPECT_EQ(1, folder.FileCount());
}

}  // namespace
