// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/utils/heap.h"

#include <gtest/gtest.h>

#include <cstdint>
#include <cstring>

#include "tests/support/fresh_services.h"
#include "tests/support/heap_faults.h"

namespace {

std::uint32_t WordBefore(const void* block, int bytes) {
  std::uint32_t word = 0;
  std::memcpy(&word, static_cast<const unsigned char*>(block) - bytes, sizeof word);
  return word;
}

TEST(AlignedBlock, StartsAtAMultipleOfAnyAlignment) {
  for (const std::int32_t alignment : {4, 12, 64, 4096}) {
    void* block = lx::lx_aligned_malloc(100, alignment, false);

    EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(block) % static_cast<unsigned>(alignment));
    lx::lx_aligned_free(block, false);
  }
}

TEST(AlignedBlock, TakesThePageSizeForMinusOne) {
  lx_test::HeapFaults heap;
  heap.SetPageSize(1024);

  void* block = lx::lx_aligned_malloc(100, -1, true);

  EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(block) % 1024);
  EXPECT_EQ(100U + 1024U + 8U, heap.LargestRequest());
  lx::lx_aligned_free(block, true);
}

TEST(AlignedBlock, TakesThePageSizeForAnyAlignmentBelowFour) {
  for (const std::int32_t alignment : {-4096, 0, 1, 2, 3}) {
    const lx_test::FreshServices fresh;
    lx_test::HeapFaults heap;
    heap.SetPageSize(1024);

    void* block = lx::lx_aligned_malloc(100, alignment, false);

    EXPECT_EQ(0U, reinterpret_cast<std::uintptr_t>(block) % 1024) << alignment;
    EXPECT_EQ(100U + 1024U + 8U, heap.LargestRequest()) << alignment;
    lx::lx_aligned_free(block, false);
  }
}

TEST(AlignedBlock, KeepsItsSizeAndTheWayBackInFrontOfIt) {
  void* block = lx::lx_aligned_malloc(100, 64, false);

  EXPECT_EQ(100U, WordBefore(block, 8));
  EXPECT_GE(WordBefore(block, 4), 9U);
  EXPECT_LE(WordBefore(block, 4), 72U);
  lx::lx_aligned_free(block, false);
}

TEST(AlignedBlock, RefusesMoreThanTwoGigabytes) {
  lx_test::HeapFaults heap;

  EXPECT_EQ(nullptr, lx::lx_aligned_malloc(0x80000000U, 64, false));
  EXPECT_EQ(0, heap.Allocations());
}

TEST(AlignedBlock, IsNullWithoutMemory) {
  lx_test::HeapFaults heap;
  heap.Refuse(1);

  EXPECT_EQ(nullptr, lx::lx_aligned_malloc(100, 64, true));
}

TEST(AlignedBlock, LeavesNothingBehind) {
  lx_test::HeapFaults heap;

  lx::lx_aligned_free(lx::lx_aligned_malloc(100, 64, true), true);

  EXPECT_EQ(0, heap.Alive());
}

}  // namespace
