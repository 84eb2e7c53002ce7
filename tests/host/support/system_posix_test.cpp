// SPDX-License-Identifier: BSD-3-Clause
// What only these systems can be asked.
#include <gtest/gtest.h>
#include <malloc.h>
#include <sys/wait.h>
#include <unistd.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "host/support/system.h"

namespace {

constexpr std::size_t kLarge = std::size_t{8} << 20U;

// Bytes that go back to the system when they are freed.
std::size_t LentBytes() { return mallinfo2().hblkhd; }

// A large block that was freed would be kept for the next one otherwise.
TEST(GiveLargeBlocksBack, HoldsAlsoForTheSecondBlockOfASize) {
  glimmerhost::GiveLargeBlocksBack();
  const std::size_t before = LentBytes();
  const auto lentByOne = [before] {
    const std::vector<char> block(kLarge, 'x');
    return block.back() == 'x' ? LentBytes() - before : 0;
  };
  if (lentByOne() == 0) {
    GTEST_SKIP() << "another allocator is in the place of the system's";
  }

  EXPECT_GE(lentByOne(), kLarge);
}

// Of a container the first process may wait for none: what one leaves that was killed would stay.
TEST(ProcessExists, NotWhereItHasEndedAndNobodyHasAskedHow) {
  const pid_t child = fork();
  if (child == 0) {
    _exit(0);
  }
  siginfo_t end{};
  ASSERT_EQ(0, waitid(P_PID, static_cast<id_t>(child), &end, WEXITED | WNOWAIT));

  EXPECT_FALSE(glimmerhost::ProcessExists(static_cast<std::uint32_t>(child)));

  ASSERT_EQ(child, waitpid(child, nullptr, 0));
  EXPECT_TRUE(glimmerhost::ProcessExists(static_cast<std::uint32_t>(getpid())));
}

}  // namespace
