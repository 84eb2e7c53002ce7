// SPDX-License-Identifier: BSD-3-Clause
// What only this system's allocator can be asked.
#include <gtest/gtest.h>
#include <malloc.h>

#include <cstddef>
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

}  // namespace
