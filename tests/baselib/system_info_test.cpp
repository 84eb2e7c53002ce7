// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/system_info.h"

#include <gtest/gtest.h>

#include "baselib/threads/module_state.h"
#include "tests/support/fresh_services.h"
#include "tests/support/heap_faults.h"

namespace {

TEST(ProcessorCount, IsNeverBelowOne) {
  lx_test::HeapFaults platform;
  for (const std::int32_t answer : {0, -3}) {
    platform.SetProcessorCount(answer);
    EXPECT_EQ(1U, lx::get_processor_count());
  }
}

TEST(ProcessorCount, DoesNotDecideTheWaysOfThePool) {
  const lx_test::FreshServices fresh;
  lx_test::HeapFaults platform;
  platform.SetProcessorCount(3);
  EXPECT_EQ(3U, lx::get_processor_count());
  EXPECT_EQ(0, lx::pool_state().ways);
  EXPECT_EQ(1, lx::pool_state().defaultWays);
}

TEST(PageSize, IsNeverBelow512) {
  const lx_test::FreshServices fresh;
  lx_test::HeapFaults platform;
  platform.SetPageSize(256);
  EXPECT_EQ(512, lx::get_page_size());
}

TEST(PageSize, IsAskedOnce) {
  const lx_test::FreshServices fresh;
  lx_test::HeapFaults platform;
  platform.SetPageSize(8192);
  EXPECT_EQ(8192, lx::get_page_size());
  platform.SetPageSize(16384);
  EXPECT_EQ(8192, lx::get_page_size());
}

}  // namespace
