// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/mixed_radix/line_plan.h"

#include <gtest/gtest.h>

#include <cstddef>
#include <cstdint>
#include <vector>

#include "tests/fftkernels/mixed_radix/exact_roots.h"

namespace {

using lx::LinePlan;

constexpr double kGuard = 12345.0;

// A plan with the table that it borrows, and a guard behind.
struct PlanWithTable {
  explicit PlanWithTable(std::int32_t length)
      : table(static_cast<std::size_t>(lx::CountTwiddles(length)) + 1, kGuard),
        plan(lx::MakeLinePlan(length, table.data())) {}

  std::vector<double> table;
  LinePlan plan;
};

TEST(LinePlan, LeavesFrequenciesAsItsExampleSays) {
  LinePlan plan;
  plan.length = 6;
  plan.count = 2;
  plan.stages[0] = {3, 6, nullptr};
  plan.stages[1] = {2, 2, nullptr};
  const int frequencies[] = {0, 3, 1, 4, 2, 5};
  for (int position = 0; position < 6; ++position) {
    EXPECT_EQ(frequencies[position], plan.FrequencyAt(position));
    EXPECT_EQ(position, plan.PositionOf(frequencies[position]));
  }
}

TEST(LinePlan, FindsEveryFrequencyWhereItIs) {
  for (std::int32_t length = 1; length <= 3000; ++length) {
    if (!lx::IsSmooth(length)) {
      continue;
    }
    const LinePlan plan = PlanWithTable(length).plan;
    std::vector<bool> isThere(static_cast<std::size_t>(length), false);
    for (std::int32_t position = 0; position < length; ++position) {
      const std::int32_t frequency = plan.FrequencyAt(position);
      ASSERT_TRUE(frequency >= 0 && frequency < length) << length;
      ASSERT_FALSE(isThere[static_cast<std::size_t>(frequency)]) << length;
      isThere[static_cast<std::size_t>(frequency)] = true;
      ASSERT_EQ(position, plan.PositionOf(frequency)) << length;
    }
  }
}

TEST(LinePlan, TakesLinesApartUntilNothingIsLeft) {
  for (const std::int32_t length : {1, 2, 7, 14, 60, 210, 343, 1080, 1296, 2160, 4096}) {
    const LinePlan plan = PlanWithTable(length).plan;
    EXPECT_EQ(length, plan.length);
    ASSERT_LE(2, plan.count);
    std::int32_t rest = length;
    for (std::int32_t s = 0; s < plan.count; ++s) {
      const LinePlan::Stage& stage = plan.stages[static_cast<std::size_t>(s)];
      EXPECT_EQ(rest, stage.length) << length << ", stage " << s;
      EXPECT_EQ(s + 1 == plan.count, stage.twiddles == nullptr) << length << ", stage " << s;
      rest /= stage.radix;
    }
    EXPECT_EQ(1, rest) << length;
  }
}

TEST(LinePlan, HasTheNearestDoublesForTwiddlesAndAsManyAsItTells) {
  for (const std::int32_t length : {2, 14, 60, 343, 1080, 2160}) {
    const PlanWithTable made(length);
    std::int64_t count = 0;
    for (std::int32_t s = 0; s + 1 < made.plan.count; ++s) {
      const LinePlan::Stage& stage = made.plan.stages[static_cast<std::size_t>(s)];
      EXPECT_EQ(made.table.data() + count, stage.twiddles);
      const double* twiddle = stage.twiddles;
      for (std::int32_t j = 0; j < stage.length / stage.radix; ++j) {
        for (std::int32_t k = 1; k < stage.radix; ++k, twiddle += 2, count += 2) {
          const lx_test::ExactRoot root = lx_test::ExactRootOf(std::int64_t{j} * k, stage.length);
          ASSERT_TRUE(lx_test::IsNearest(root.cosine, twiddle[0]))
              << length << " " << j << " " << k;
          ASSERT_TRUE(lx_test::IsNearest(-root.sine, twiddle[1])) << length << " " << j << " " << k;
        }
      }
    }
    EXPECT_EQ(lx::CountTwiddles(length), count) << length;
    EXPECT_EQ(kGuard, made.table.back()) << length;
  }
}

}  // namespace
