// What the README tells a new user to type, as it stands there.
#include <gtest/gtest.h>

#include <cstddef>
#include <filesystem>
#include <fstream>
#include <string>

#include "tests/host/farm/slurm_cluster.h"
#include "tests/host/glimmerhost/shot_program.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using farm_test::SlurmCluster;
using host_test::Bytes;

// The commands of a section, which are its indented lines.
std::string CommandsOf(const std::string& section) {
  std::ifstream in(fs::path(SOURCES) / "README.md");
  std::string commands;
  bool isWithin = false;
  for (std::string line; std::getline(in, line);) {
    if (line.starts_with("#")) {
      isWithin = line.ends_with(" " + section);
    } else if (isWithin && line.starts_with("    ")) {
      commands += line.substr(4) + "\n";
    }
  }
  return commands;
}

std::size_t Count(const std::string& text, const std::string& part) {
  std::size_t count = 0;
  for (std::size_t at = text.find(part); at != std::string::npos; at = text.find(part, at + 1)) {
    ++count;
  }
  return count;
}

TEST(Readme, TakesAShotToAFarm) {
  if (const std::string lacks = SlurmCluster::Lacks(); !lacks.empty()) {
    GTEST_SKIP() << lacks;
  }
  const SlurmCluster cluster(SLURM_NOTE);
  std::string why;
  ASSERT_TRUE(cluster.IsUp(&why)) << why;
  // As a clone would be, with the program built.
  const lx_test::ScratchFolder clone;
  fs::create_directory(clone / "scripts");
  fs::create_symlink(PROGRAM, clone / "scripts/glimmerhost");
  for (const char* folder : {"examples", "docs"}) {
    fs::create_directory_symlink(fs::path(SOURCES) / folder, clone / folder);
  }
  const std::string commands = CommandsOf("From a shot to a farm");
  std::ofstream(clone / "commands") << "set -eo pipefail\ncd '" << clone.Path().string() << "'\n"
                                    << commands;

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
