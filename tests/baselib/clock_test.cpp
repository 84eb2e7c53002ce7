// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/clock.h"

#include <gtest/gtest.h>

#include "tests/support/platform_recorder.h"

namespace {

TEST(Clock, NeverGoesBack) {
  double last = lx::get_seconds();
  for (int i = 0; i < 1000; ++i) {
    const double now = lx::get_seconds();
    ASSERT_GE(now, last);
    last = now;
  }
}

TEST(Clock, AsksForItsFrequencyOnce) {
  const lx_test::PlatformRecorder platform;
  lx::get_seconds();
  lx::get_seconds();
  EXPECT_EQ(1, platform.Count("frequency"));
}

// A low word with its highest bit set counts up and not down.
TEST(Clock, TakesTheLowHalfOfTheCounterWithoutASign) {
  lx_test::PlatformRecorder platform;
  platform.SetCounter(0x3F0000000, 0x100000000);
  EXPECT_DOUBLE_EQ(3.9375, lx::get_seconds());
}

TEST(Clock, TakesTheLowHalfOfTheFrequencyWithoutASign) {
  lx_test::PlatformRecorder platform;
  platform.SetCounter(0x180000000, 0xC0000000);
  EXPECT_DOUBLE_EQ(2.0, lx::get_seconds());
}

}  // namespace
