// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/mixed_radix/quick_sizes.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <vector>

namespace {

constexpr int kLongest = 32768;
constexpr int kLookedAt = kLongest + kLongest / 8;

bool IsProductOfSmallPrimes(std::int64_t n) {
  for (const int prime : {2, 3, 5, 7}) {
    while (n % prime == 0) {
      n /= prime;
    }
  }
  return n == 1;
}

constexpr std::int64_t kNone = 1 << 30;
using Costs = std::vector<std::int64_t>;

std::int64_t CostOf(const lx::StageCosts& costs, int radix) {
  return costs[static_cast<std::size_t>(radix)];
}

// The least that stages between the first and the last can cost, by building lengths up from 1, a
// stage more each time.
Costs LeastBetween() {
  Costs all(kLookedAt + 1, kNone);
  all[1] = 0;
  Costs before = all;
  for (int stages = 1; stages <= lx::kMostStages - 2; ++stages) {
    Costs now(kLookedAt + 1, kNone);
    for (int length = 2; length <= kLookedAt; ++length) {
      for (int radix = 2; radix <= lx::kLargestRadix; ++radix) {
        if (length % radix == 0 && before[length / radix] != kNone) {
          now[length] =
              std::min(now[length], before[length / radix] + CostOf(lx::kMiddleCosts, radix));
        }
      }
      all[length] = std::min(all[length], now[length]);
    }
    before = now;
  }
  return all;
}

// Short lengths may have a stage of 1 at either end.
Costs LeastCosts() {
  const Costs between = LeastBetween();
  Costs costs(kLookedAt + 1, kNone);
  for (int length = 1; length <= kLookedAt; ++length) {
    const int least = length <= lx::kLargestRadix ? 1 : 2;
    for (int first = least; first <= lx::kLargestRadix; ++first) {
      for (int last = least; last <= lx::kLargestRadix; ++last) {
        if (length % (first * last) == 0) {
          costs[length] = std::min(costs[length], CostOf(lx::kFirstCosts, first) +
                                                      CostOf(lx::kLastCosts, last) +
                                                      between[length / (first * last)]);
        }
      }
    }
  }
  return costs;
}

TEST(TakeApart, GivesTheCheapestStagesWhoseProductIsTheLength) {
  const Costs costs = LeastCosts();
  for (int length = 1; length <= kLookedAt; ++length) {
    const lx::Radices radices = lx::TakeApart(length);
    if (!IsProductOfSmallPrimes(length)) {
      ASSERT_EQ(0, radices.count) << length;
      continue;
    }
    ASSERT_LE(2, radices.count) << length;
    ASSERT_GE(lx::kMostStages, radices.count) << length;
    std::int64_t product = 1;
    std::int64_t cost = 0;
    for (int s = 0; s < radices.count; ++s) {
      const int radix = radices.radix[static_cast<std::size_t>(s)];
      ASSERT_LE(1, radix) << length;
      ASSERT_GE(lx::kLargestRadix, radix) << length;
      product *= radix;
      cost += CostOf(s == 0                   ? lx::kFirstCosts
                     : s + 1 == radices.count ? lx::kLastCosts
                                              : lx::kMiddleCosts,
                     radix);
    }
    ASSERT_EQ(length, product);
    ASSERT_EQ(cost, radices.cost) << length;
    ASSERT_EQ(costs[static_cast<std::size_t>(length)], cost) << length;
  }
}

// A stage of 1 leaves what it is given, and costs nothing.
TEST(TakeApart, GivesTwoStagesToALengthThatHasOneOrNone) {
  const lx::Radices one = lx::TakeApart(1);
  EXPECT_EQ(2, one.count);
  EXPECT_EQ(1, one.radix[0] * one.radix[1]);
  EXPECT_EQ(0, one.cost);
  const lx::Radices seven = lx::TakeApart(7);
  EXPECT_EQ(2, seven.count);
  EXPECT_EQ(7, seven.radix[0] * seven.radix[1]);
}

// Of the lengths up to an eighth above, that of which the whole frame takes least: 400 a number for
// what is no transform, and the stages.
TEST(QuickSize, IsTheQuickestOfTheNextEighthOrTheNextThereIs) {
  const Costs costs = LeastCosts();
  for (const int step : {1, 2}) {
    for (int atLeast = 1; atLeast < kLongest; atLeast += 1 + atLeast / 50) {
      std::int64_t best = 0;
      std::int64_t bestTime = 0;
      for (std::int64_t length = atLeast; best == 0 || length <= atLeast + atLeast / 8; ++length) {
        if (length % step != 0 || !IsProductOfSmallPrimes(length / step)) {
          continue;
        }
        ASSERT_LE(length / step, kLookedAt);
        const std::int64_t time = length * (400 + costs[static_cast<std::size_t>(length / step)]);
        if (best == 0 || time < bestTime) {
          best = length;
          bestTime = time;
        }
      }
      ASSERT_EQ(best, lx::QuickSize(atLeast, step)) << atLeast << ", step " << step;
    }
  }
}

// So that a larger aperture never has a smaller grid.
TEST(QuickSize, GrowsWithWhatIsAskedFor) {
  for (const int step : {1, 2}) {
    std::int64_t last = 0;
    for (int atLeast = 1; atLeast <= 6000; ++atLeast) {
      const std::int64_t size = lx::QuickSize(atLeast, step);
      ASSERT_LE(atLeast, size);
      ASSERT_LE(last, size) << atLeast << ", step " << step;
      last = size;
    }
  }
}

TEST(QuickSize, HasTheLongestSideAmongItsSizes) {
  EXPECT_TRUE(IsProductOfSmallPrimes(kLongest));
  EXPECT_TRUE(IsProductOfSmallPrimes(kLongest / 2));
  EXPECT_NE(0, lx::TakeApart(kLongest).count);
}

}  // namespace
