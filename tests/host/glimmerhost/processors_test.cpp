// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/processors.h"

#include <gtest/gtest.h>

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
  EXPECT_THROW(glimmerhost::NarrowProcessors("2"), glimmerhost::UsageError);
}

TEST_F(Processors, StayAsTheyAreWithoutACount) {
  const int before = lx_test::ProcessorCount();
  glimmerhost::NarrowProcessors("");
  EXPECT_EQ(before, lx_test::ProcessorCount());
}

TEST_F(Processors, RefuseWhatIsNoCount) {
  for (const char* text : {"0", "-1", "1.5", "all", "1000000", "nan"}) {
    EXPECT_THROW(glimmerhost::NarrowProcessors(text), glimmerhost::UsageError) << text;
  }
}

}  // namespace
