// SPDX-License-Identifier: BSD-3-Clause
// What the page on farms tells a new user to type, as it stands there.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <string>

#include "tests/host/farm/slurm_cluster.h"
#include "tests/host/glimmerhost/page_commands.h"
#include "tests/host/glimmerhost/shot_program.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using farm_test::SlurmCluster;
using host_test::Bytes;
using host_test::CommandsOf;
using host_test::FillClone;
using host_test::WriteScript;

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST(FarmPage, TakesAShotToAFarm) {
  if (const std::string lacks = SlurmCluster::Lacks(); !lacks.empty()) {
    GTEST_SKIP() << lacks;
  }
  const SlurmCluster cluster(SLURM_NOTE);
  std::string why;
  ASSERT_TRUE(cluster.IsUp(&why)) << why;
  const lx_test::ScratchFolder clone;
  FillClone(clone);
  const std::string commands = CommandsOf("docs/farm.md", "From a shot to a farm");
  WriteScript(clone, commands);

  const lx_test::Outcome outcome = cluster.Run("/bin/bash", {(clone / "commands").string()});

  ASSERT_EQ(0, outcome.code) << outcome.text << commands;
  ASSERT_TRUE(cluster.Finishes(120)) << cluster.Jobs();
  // Three chunks and the check.
  EXPECT_EQ(4U, Count(cluster.Jobs(), " COMPLETED ")) << cluster.Jobs();
  for (int frame = 1001; frame <= 1012; ++frame) {
    const std::string end = "." + std::to_string(frame) + ".png";
    const std::string bytes = Bytes(clone / ("blurred" + end));
    EXPECT_FALSE(bytes.empty()) << end;
    for (const char* other : {"chunks", "parallel", "slurm"}) {
      EXPECT_TRUE(bytes == Bytes(clone / (other + end))) << other << end;
    }
  }
  EXPECT_EQ("12\n",
            lx_test::RunChild("/usr/bin/ffprobe", {"-v", "error", "-count_frames", "-show_entries",
                                                   "stream=nb_read_frames", "-of", "csv=p=0",
                                                   (clone / "blurred.mp4").string()})
                .text);
}

}  // namespace
