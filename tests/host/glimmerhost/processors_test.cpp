// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/processors.h"

#include <gtest/gtest.h>

#include <string>

#include "host/support/failure.h"
#include "tests/support/processors.h"

namespace {

class Processors : public testing::Test {
 private:
  const lx_test::ProcessorsAsBefore before_;
};

TEST_F(Processors, AreNarrowedToTheFirstOfThoseAllowed) {
  glimmerhost::NarrowProcessors("1");
  EXPECT_EQ(1, lx_test::ProcessorCount());
  // What was narrowed once cannot be widened.
  glimmerhost::NarrowProcessors("2");
  EXPECT_EQ(1, lx_test::ProcessorCount());
}

TEST_F(Processors, StayAsTheyAreWithoutACount) {
  const int before = lx_test::ProcessorCount();
  glimmerhost::NarrowProcessors("");
  EXPECT_EQ(before, lx_test::ProcessorCount());
}

// A look or a farm's script is used on more than one machine.
TEST_F(Processors, AreAllUsedWhereMoreAreAskedFor) {
  const int before = lx_test::ProcessorCount();
  testing::internal::CaptureStderr();
  glimmerhost::NarrowProcessors("1000000");
  EXPECT_EQ("glimmerhost: --threads 1000000: all " + std::to_string(before) +
                " that this process may run on are used\n",
            testing::internal::GetCapturedStderr());
  EXPECT_EQ(before, lx_test::ProcessorCount());
}

TEST_F(Processors, RefuseWhatIsNoCount) {
  for (const char* text : {"0", "-1", "1.5", "all", "nan", "inf"}) {
    EXPECT_THROW(glimmerhost::NarrowProcessors(text), glimmerhost::UsageError) << text;
  }
}

}  // namespace
