// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/last_error.h"

#include <gtest/gtest.h>

#include <cstring>
#include <string>
#include <thread>

#include "tests/support/platform_recorder.h"
#include "tests/support/system.h"

namespace {

std::string WithoutLineFeed(std::string text) {
  if (!text.empty() && text.back() == '\n') {
    text.pop_back();
  }
  return text;
}

TEST(LastError, IsEmptyWhereThereIsNone) {
  lx_test::PlatformRecorder platform;
  platform.SetError(0, "not to be seen");
  EXPECT_STREQ("", lx::last_error_text());
}

TEST(LastError, LosesItsLineFeedAndNothingElse) {
  lx_test::PlatformRecorder platform;
  platform.SetError(5, "access denied\r\n");
  EXPECT_STREQ("access denied\r", lx::last_error_text());
  platform.SetError(5, "twice\n\n");
  EXPECT_STREQ("twice\n", lx::last_error_text());
  platform.SetError(5, "%1 stays");
  EXPECT_STREQ("%1 stays", lx::last_error_text());
}

TEST(LastError, IsCutToItsBuffer) {
  lx_test::PlatformRecorder platform;
  platform.SetError(5, std::string(1000, 'x'));
  EXPECT_EQ(255U, std::strlen(lx::last_error_text()));
}

TEST(LastError, IsTheSystemsText) {
  lx_test::RaiseError(lx_test::kNoSuchFile);
  EXPECT_EQ(WithoutLineFeed(lx_test::SystemText(lx_test::kNoSuchFile)), lx::last_error_text());
}

TEST(LastError, HasABufferForEachThread) {
  lx_test::RaiseError(lx_test::kNoSuchFile);
  const char* own = lx::last_error_text();
  const std::string before = own;
  std::thread([] {
    lx_test::RaiseError(lx_test::kNoAccess);
    EXPECT_EQ(WithoutLineFeed(lx_test::SystemText(lx_test::kNoAccess)), lx::last_error_text());
  }).join();
  EXPECT_EQ(before, own);
}

}  // namespace
