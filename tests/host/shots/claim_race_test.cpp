// SPDX-License-Identifier: BSD-3-Clause
// Claims of several processes at once.
#include <fcntl.h>
#include <gtest/gtest.h>
#include <sched.h>
#include <sys/wait.h>
#include <unistd.h>

#include <filesystem>
#include <string>
#include <vector>

#include "host/shots/frame_claim.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::FrameClaim;

// Made, taken over and removed at once. Who has it makes a file that nobody else may find.
TEST(RacingClaims, AreNeverTwoHoweverManyProgramsAsk) {
  const lx_test::ScratchFolder folder;
  const std::filesystem::path output = folder / "out.png";
  const std::string mark = (folder / "mark").string();
  const auto ask = [&] {
    for (int taken = 0; taken < 200;) {
      if (const auto claim = FrameClaim::Try(output)) {
        const int marked = open(mark.c_str(), O_CREAT | O_EXCL | O_CLOEXEC, 0600);
        if (marked < 0) {
          return 1;
        }
        close(marked);
        sched_yield();
        unlink(mark.c_str());
        ++taken;
      }
    }
    return 0;
  };
  std::vector<pid_t> children;
  for (int i = 0; i < 4; ++i) {
    children.push_back(fork());
    if (children.back() == 0) {
      _exit(ask());
    }
  }
  for (const pid_t child : children) {
    int status = -1;
    EXPECT_EQ(child, waitpid(child, &status, 0));
    EXPECT_EQ(0, status);
  }
  EXPECT_EQ(0, folder.FileCount());
}

}  // namespace
