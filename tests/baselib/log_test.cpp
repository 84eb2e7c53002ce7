#include "baselib/utils/log.h"

#include <gtest/gtest.h>

#include "tests/support/fresh_services.h"

namespace {

using testing::internal::CaptureStderr;
using testing::internal::GetCapturedStderr;

TEST(Log, EndsEveryLineOnce) {
  CaptureStderr();
  lx::log_message(lx::kLogWarn, "abc %d", 5);
  lx::log_message(lx::kLogError, "abc %s\n", "x");
  lx::log_message(lx::kLogInfo, "%s", "");
  EXPECT_EQ("(LX LIB) WARN : abc 5\n(LX LIB) ERROR: abc x\n(LX LIB) INFO : \n",
            GetCapturedStderr());
}

TEST(Log, DropsWhatIsBelowErrorAndAboveInfo) {
  CaptureStderr();
  lx::log_message(0, "none");
  lx::log_message(-1, "less than none");
  lx::log_message(lx::kLogDebug, "debug");
  lx::log_message(9, "beyond trace");
  EXPECT_EQ("", GetCapturedStderr());
}

TEST(Log, ContinuesNothingBeforeAMessageWasWritten) {
  const lx_test::FreshServices fresh;
  CaptureStderr();
  lx::log_message(lx::kLogDebug, "dropped");
  lx::log_continue("and more");
  EXPECT_EQ("", GetCapturedStderr());
}

TEST(Log, ContinuesBehindWhatWasWritten) {
  CaptureStderr();
  lx::log_message(lx::kLogError, "first");
  lx::log_message(lx::kLogTrace, "dropped");
  lx::log_continue("and %s", "more");
  EXPECT_EQ("(LX LIB) ERROR: first\n(LX LIB)      : and more\n", GetCapturedStderr());
}

}  // namespace
