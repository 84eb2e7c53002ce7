// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/frame_claim.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>
#include <iterator>
#include <memory>
#include <string>
#include <vector>

#include "host/support/failure.h"
#include "host/support/system.h"
#include "tests/support/scratch_folder.h"

namespace {

namespace fs = std::filesystem;
using glimmerhost::FrameClaim;

class FrameClaims : public testing::Test {
 public:
  lx_test::ScratchFolder folder;
  const fs::path output = folder / "out.0001.png";
  const fs::path file = folder / ".out.0001.png.claim";
};

TEST_F(FrameClaims, AreOneProgramsAtATime) {
  auto mine = FrameClaim::Try(output);
  ASSERT_TRUE(mine);
  EXPECT_FALSE(FrameClaim::Try(output));
  EXPECT_TRUE(FrameClaim::Try(folder / "out.0002.png"));
  mine = nullptr;
  EXPECT_TRUE(FrameClaim::Try(output));
  EXPECT_EQ(0, folder.FileCount());
}

TEST_F(FrameClaims, NameTheProcessAndTheMachine) {
  const auto mine = FrameClaim::Try(output);
  std::ifstream in(file, std::ios::binary);
  const std::string text{std::istreambuf_iterator<char>(in), {}};
  EXPECT_EQ(std::to_string(glimmerhost::ProcessId()) + " " + glimmerhost::HostName() + "\n", text);
}

// Whatever it says: the lock went with its program, and a number may be another process's by now.
TEST_F(FrameClaims, AreTakenOverFromAProgramThatIsGone) {
  for (const std::string text : {"", "1 elsewhere\n", "no claim at all"}) {
    std::ofstream(file) << text;
    auto mine = FrameClaim::Try(output);
    ASSERT_TRUE(mine) << text;
    EXPECT_FALSE(FrameClaim::Try(output));
    mine = nullptr;
    EXPECT_FALSE(fs::exists(file));
  }
}

#ifndef _WIN32
// Somebody else might have put it there, for what it leads to to be written over.
TEST_F(FrameClaims, FollowNoLink) {
  std::ofstream(folder / "precious") << "precious";
  for (const char* to : {"precious", "none"}) {
    fs::create_symlink(folder / to, file);
    EXPECT_THROW(FrameClaim::Try(output), glimmerhost::Failure);
    EXPECT_FALSE(fs::exists(folder / "none"));
    EXPECT_EQ(8U, fs::file_size(folder / "precious"));
    fs::remove(file);
  }
}
#endif

TEST_F(FrameClaims, AreRefusedInAFolderThatIsNotThere) {
  EXPECT_THROW(FrameClaim::Try(folder / "none" / "out.png"), glimmerhost::Failure);
}

TEST_F(FrameClaims, LeaveWhatAnotherProgramHasPutInTheirPlace) {
  auto mine = FrameClaim::Try(output);
  fs::rename(file, folder / "moved");
  std::ofstream(file) << "another";
  mine = nullptr;
  EXPECT_TRUE(fs::exists(file));
}

TEST_F(FrameClaims, HaveNamesThatSystemsTakeHoweverLongTheOutputs) {
  const std::string beginning(248, 'x');
  const auto one = FrameClaim::Try(folder / (beginning + "1.png"));
  const auto another = FrameClaim::Try(folder / (beginning + "2.png"));
  EXPECT_TRUE(one);
  EXPECT_TRUE(another);
}

}  // namespace
