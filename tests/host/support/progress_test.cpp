// SPDX-License-Identifier: BSD-3-Clause
// Progress where nobody watches stderr: only warnings are written.
#include "host/support/progress.h"

#include <gtest/gtest.h>

#include <string>

namespace {

using glimmerhost::Progress;

TEST(Progress, SaysNothingButWarningsWhereThereIsNoTerminal) {
  testing::internal::CaptureStderr();
  {
    Progress progress(true);
    progress.Show("Reading");
    progress.Warn("a.png is odd");
    progress.Show("Rendering");
    progress.Finish("Done");
  }

  EXPECT_EQ("glimmerhost: a.png is odd\n", testing::internal::GetCapturedStderr());
}

TEST(Progress, GivesEachWarningALine) {
  testing::internal::CaptureStderr();
  Progress progress(false);
  progress.WarnAll({"one", "two"});

  EXPECT_EQ("glimmerhost: one\nglimmerhost: two\n", testing::internal::GetCapturedStderr());
}

TEST(Progress, KeepsAWarningInOneLineWhateverItNames) {
  testing::internal::CaptureStderr();
  Progress progress(false);
  progress.Warn("a\nb.png is odd");

  const std::string text = testing::internal::GetCapturedStderr();
  EXPECT_EQ(text.size() - 1, text.find('\n')) << text;
}

}  // namespace
