#include "host/glimmerhost/processors.h"

#include <gtest/gtest.h>
#include <sched.h>

#include "host/support/failure.h"

namespace {

class Processors : public testing::Test {
 public:
  Processors() { sched_getaffinity(0, sizeof before_, &before_); }
  ~Processors() override { sched_setaffinity(0, sizeof before_, &before_); }

  static int Count() {
    cpu_set_t now;
    sched_getaffinity(0, sizeof now, &now);
    return CPU_COUNT(&now);
  }

 private:
  cpu_set_t before_;
};

TEST_F(Processors, AreNarrowedToTheFirstOfThoseAllowed) {
  glimmerhost::NarrowProcessors("1");
  EXPECT_EQ(1, Count());
  // What was narrowed once cannot be widened.
  EXPECT_THROW(glimmerhost::NarrowProcessors("2"), glimmerhost::UsageError);
}

TEST_F(Processors, StayAsTheyAreWithoutACount) {
  const int before = Count();
  glimmerhost::NarrowProcessors("");
  EXPECT_EQ(before, Count());
}

TEST_F(Processors, RefuseWhatIsNoCount) {
  for (const char* text : {"0", "-1", "1.5", "all", "1000000", "nan"}) {
    EXPECT_THROW(glimmerhost::NarrowProcessors(text), glimmerhost::UsageError) << text;
  }
}

}  // namespace
