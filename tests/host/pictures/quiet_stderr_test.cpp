// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/quiet_stderr.h"

#include <gtest/gtest.h>

#include <cstdio>
#include <iostream>
#include <thread>

namespace {

using glimmerhost::QuietStderr;

void SayTwice(const char* what) {
  std::fprintf(stderr, "%s by C\n", what);
  std::cerr << what << " by C++" << std::endl;
}

TEST(QuietStderr, KeepsQuietWhatItsThreadSays) {
  testing::internal::CaptureStderr();
  SayTwice("before");
  {
    const QuietStderr quiet;
    SayTwice("within");
    { const QuietStderr twice; }
    SayTwice("within");
  }
  SayTwice("after");
  EXPECT_EQ("before by C\nbefore by C++\nafter by C\nafter by C++\n",
            testing::internal::GetCapturedStderr());
}

TEST(QuietStderr, LetsOtherThreadsBeHeard) {
  testing::internal::CaptureStderr();
  {
    const QuietStderr quiet;
    std::thread(SayTwice, "beside").join();
  }
  EXPECT_EQ("beside by C\nbeside by C++\n", testing::internal::GetCapturedStderr());
}

}  // namespace
