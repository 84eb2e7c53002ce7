// SPDX-License-Identifier: BSD-3-Clause
// Shots on a real farm.
#include <gtest/gtest.h>

#include <cstdint>
#include <filesystem>
#include <fstream>
#include <memory>
#include <string>

#include "tests/host/farm/slurm_cluster.h"
#include "tests/host/glimmerhost/shot_program.h"

namespace {

namespace fs = std::filesystem;
using farm_test::SlurmCluster;
using farm_test::WaitFor;
using host_test::Bytes;
using host_test::kAnimated;
using host_test::Outcome;
using host_test::Picture;

class Slurm : public host_test::ShotProgram {
 public:
  void SetUp() override {
    if (const std::string lacks = SlurmCluster::Lacks(); !lacks.empty()) {
      GTEST_SKIP() << lacks;
    }
    cluster = std::make_unique<SlurmCluster>(SLURM_NOTE);
    std::string why;
    ASSERT_TRUE(cluster->IsUp(&why)) << why;
  }

  void TearDown() override { EXPECT_TRUE(cluster == nullptr || cluster->Clear()); }

  // Frames that take a while.
  void WriteLargeShot(int last) {
    Picture picture;
    picture.width = 1200;
    picture.height = 800;
    picture.samples.resize(picture.PixelCount() * 4);
    std::uint32_t state = 1;
    for (int frame = 1; frame <= last; ++frame) {
      for (std::uint16_t& sample : picture.samples) {
        state = state * 1664525U + 1013904223U;
        sample = static_cast<std::uint16_t>(state >> 16U);
      }
      glimmerhost::PictureOutput(folder / InputName(frame), true).Write(picture, 16);
    }
  }

  // In the folder of the pictures; the scripts name it.
  Outcome Submit(const std::string& output, const std::string& options) {
    return cluster->Run(PROGRAM, lx_test::SplitArguments(
                                     "submit '" + (folder / "in.@.png").string() + "' -o '" +
                                     (folder / output).string() + "' --engine slurm " + options));
  }

  // The number of the array's job.
  static std::string ArrayOf(const Outcome& submission) {
    const std::string& text = submission.text;
    const std::size_t end = text.find(": ");
    return text.starts_with("job ") && end != std::string::npos ? text.substr(4, end - 4) : "none";
  }

  // The number of the check's job: jobs of the array may have taken those behind its own.
  static std::string CheckOf(const Outcome& submission) {
    const std::string& text = submission.text;
    const std::size_t end = text.find(": the check, ");
    const std::size_t begin = text.rfind(' ', end) + 1;
    return end == std::string::npos ? "none" : text.substr(begin, end - begin);
  }

  void ExpectSameBytes(const std::string& one, const std::string& other, int last) {
    for (int frame = 1; frame <= last; ++frame) {
      const std::string end = "." + std::to_string(frame) + ".png";
      const std::string bytes = Bytes(folder / (one + end));
      EXPECT_FALSE(bytes.empty()) << frame;
      EXPECT_TRUE(bytes == Bytes(folder / (other + end))) << frame;
    }
  }

  std::unique_ptr<SlurmCluster> cluster;
};

TEST_F(Slurm, GivesTheBytesOfOneRenderFromTwoNodes) {
  WriteShot(1, 8);
  const std::string options = kAnimated;
  ASSERT_EQ(0, host_test::RunProgram(Shot("whole.@.png", options)).code);
  const std::string odd = "o\"dd $x `y` 100%\nb";

  const Outcome outcome = Submit(odd + ".@.png", options + "--chunk 3 --threads 1");

  ASSERT_EQ(0, outcome.code) << outcome.text;
  const std::string check = CheckOf(outcome);
  const std::string array = ArrayOf(outcome);
  EXPECT_EQ(0U, outcome.text.find("job " + array + ": 3 chunks of at most 3 frames\n"))
      << outcome.text;
  ASSERT_TRUE(cluster->Finishes(120)) << cluster->Jobs();
  const std::string jobs = cluster->Jobs();
  EXPECT_NE(std::string::npos, jobs.find(array + "_3 COMPLETED ")) << jobs;
  EXPECT_NE(std::string::npos, jobs.find("\n" + check + " COMPLETED ")) << jobs;
  EXPECT_NE(std::string::npos, jobs.find(array + "_1 COMPLETED n1\n")) << jobs;
  EXPECT_NE(std::string::npos, jobs.find(" COMPLETED n2\n")) << jobs;
  ExpectSameBytes("whole", odd, 8);
  EXPECT_EQ("8 frames are as they were written\n",
            Bytes(folder / (odd + ".slurm-" + check + ".log")));
}

TEST_F(Slurm, ChecksAllTheSameWhereAChunkFails) {
  WriteShot(1, 4);
  std::ofstream(folder / "in.2.png") << "no picture";

  const Outcome outcome = Submit("out.@.png", "--radius 2px --chunk 1");
  const std::string check = CheckOf(outcome);
  const std::string array = ArrayOf(outcome);

  ASSERT_TRUE(cluster->Finishes(120)) << cluster->Jobs();
  const std::string jobs = cluster->Jobs();
  EXPECT_NE(std::string::npos, jobs.find(array + "_2 FAILED ")) << jobs;
  EXPECT_NE(std::string::npos, jobs.find(array + "_4 COMPLETED ")) << jobs;
  EXPECT_NE(std::string::npos, jobs.find("\n" + check + " FAILED ")) << jobs;
  EXPECT_EQ("glimmerhost: no line for frames 2\n", Bytes(folder / ("out.slurm-" + check + ".log")));
  EXPECT_NE(std::string::npos,
            Bytes(folder / ("out.slurm-" + array + "_2.log")).find("glimmerhost: frame 2: "));
}

TEST_F(Slurm, RendersOnWhereANodeWasLost) {
  WriteLargeShot(6);
  const std::string options = "--radius 'first=20px; last=60px' --emphasis 20 ";
  ASSERT_EQ(0, host_test::RunProgram(Shot("whole.@.png", options)).code);

  const Outcome outcome = Submit("out.@.png", options + "--chunk 3");
  const std::string check = CheckOf(outcome);
  const std::string array = ArrayOf(outcome);
  ASSERT_TRUE(WaitFor(120, [&] { return fs::exists(folder / "out.4.png"); })) << cluster->Jobs();
  const std::string lost = cluster->LoseNodeOf(2);
  ASSERT_FALSE(lost.empty()) << cluster->Jobs();
  ASSERT_FALSE(fs::exists(folder / "out.6.png")) << "the chunk was done before its node was lost";

  ASSERT_TRUE(cluster->Finishes(160)) << cluster->Jobs();
  const std::string jobs = cluster->Jobs();
  const std::string other = lost == "n1" ? "n2" : "n1";
  EXPECT_NE(std::string::npos, jobs.find(array + "_2 COMPLETED " + other + "\n")) << jobs;
  EXPECT_NE(std::string::npos, jobs.find("\n" + check + " COMPLETED ")) << jobs;
  const std::string log = Bytes(folder / ("out.slurm-" + array + "_2.log"));
  EXPECT_NE(std::string::npos, log.find("out.4.png is there already\n")) << log;
  ExpectSameBytes("whole", "out", 6);
  EXPECT_EQ("6 frames are as they were written\n", Bytes(folder / ("out.slurm-" + check + ".log")));
  for (const fs::directory_entry& entry : fs::directory_iterator(folder.Path())) {
    EXPECT_EQ(std::string::npos, entry.path().string().find(".part.")) << entry.path();
    EXPECT_NE(".claim", entry.path().extension()) << entry.path();
  }
}

}  // namespace
