// SPDX-License-Identifier: BSD-3-Clause
// Children that a signal alone does not end: they wait for the end of their input, as ffmpeg does.
#include <gtest/gtest.h>
#include <sched.h>
#include <unistd.h>

#include <filesystem>
#include <memory>
#include <string>

#include "host/support/child_process.h"
#include "tests/support/scratch_folder.h"

namespace {

using glimmerhost::ChildProcess;

// Comes back when it does not mind the signal any more.
std::unique_ptr<ChildProcess> StartStubborn(const lx_test::ScratchFolder& folder) {
  const std::filesystem::path ready = folder / "ready";
  auto child = std::make_unique<ChildProcess>(
      "/bin/sh",
      std::vector<std::string>{"-c", "trap '' TERM; : >'" + ready.string() + "'; exec cat"},
      ChildProcess::Use::kInput);
  while (!std::filesystem::exists(ready)) {
    sched_yield();
  }
  return child;
}

TEST(StubbornChild, EndsWithItsObjectByTheEndOfItsInput) {
  const lx_test::ScratchFolder folder;
  StartStubborn(folder).reset();
}

// All of it in another process, which would wait for ever if it started one more.
TEST(StubbornChild, EndsWithTheProgramByTheEndOfItsInput) {
  const lx_test::ScratchFolder folder;
  EXPECT_EXIT(
      {
        const auto child = StartStubborn(folder);
        glimmerhost::EndChildren();
        _exit(7);
      },
      testing::ExitedWithCode(7), "");
}

}  // namespace
