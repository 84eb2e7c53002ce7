// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <vector>

#include "fftkernels/fftkernels.h"
#include "tests/fftkernels/transform_model.h"

namespace {

using Table = std::vector<std::uint32_t>;

// Frequencies that no table holds, so that an entry left out shows.
constexpr std::uint32_t kUnwritten = 0xfeedfeed;

constexpr std::uint32_t kLargestTable = 1 << 20;

Table Built(std::uint32_t n) {
  Table table(n, kUnwritten);
  lx::BuildFrequencyTable(table.data(), n);
  return table;
}

TEST(FrequencyTable, OfOneHoldsZero) { EXPECT_EQ(Built(1), (Table{0})); }

TEST(FrequencyTable, OfTwoIsInNaturalOrder) { EXPECT_EQ(Built(2), (Table{0, 1})); }

TEST(FrequencyTable, OfFourHasTheEvenOnesFirst) { EXPECT_EQ(Built(4), (Table{0, 2, 1, 3})); }

TEST(FrequencyTable, OfEightHasTheThirdBlockDownwards) {
  EXPECT_EQ(Built(8), (Table{0, 4, 2, 6, 1, 5, 7, 3}));
}

TEST(FrequencyTable, OfSixteenRepeatsItselfInTheFirstHalf) {
  EXPECT_EQ(Built(16), (Table{0, 8, 4, 12, 2, 10, 14, 6, 1, 9, 5, 13, 15, 7, 3, 11}));
}

TEST(FrequencyTable, FollowsItsRecursionAtEveryPowerOfTwo) {
  for (std::uint32_t n = 1; n <= kLargestTable; n *= 2) {
    // Not EXPECT_EQ, which would print a million numbers.
    EXPECT_TRUE(Built(n) == lx_test::FrequencyOrder(n)) << "size " << n;
  }
}

TEST(FrequencyTable, HoldsEachFrequencyOnce) {
  for (std::uint32_t n = 1; n <= kLargestTable; n *= 2) {
    Table sorted = Built(n);
    std::sort(sorted.begin(), sorted.end());
    Table natural(n);
    std::iota(natural.begin(), natural.end(), 0U);
    EXPECT_TRUE(sorted == natural) << "size " << n;
  }
}

TEST(FrequencyTable, BeginsWithZeroAndHalfTheSize) {
  for (std::uint32_t n = 2; n <= kLargestTable; n *= 2) {
    const Table table = Built(n);
    EXPECT_EQ(table[0], 0U) << "size " << n;
    EXPECT_EQ(table[1], n / 2) << "size " << n;
  }
}

TEST(FrequencyTable, IsWrittenWithinItsArray) {
  for (std::uint32_t n = 1; n <= 16384; n *= 2) {
    Table table(n + 2, kUnwritten);

    lx::BuildFrequencyTable(table.data() + 1, n);

    EXPECT_EQ(table.front(), kUnwritten) << "size " << n;
    EXPECT_EQ(table.back(), kUnwritten) << "size " << n;
  }
}

TEST(KernelSizes, AreThePowersOfTwoFrom2To8192) {
  std::vector<int> sizes;
  for (int n = -16384; n <= 32768; ++n) {
    if (lx::IsKernelSize(n)) {
      sizes.push_back(n);
    }
  }
  EXPECT_EQ(sizes, (std::vector<int>{2, 4, 8, 16, 32, 64, 128, 256, 512, 1024, 2048, 4096, 8192}));
}

}  // namespace
