// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>
#include <sched.h>

#include "tests/border/one_processor.h"

namespace lx_test {

struct OneProcessor::Before {
  cpu_set_t processors;
};

OneProcessor::OneProcessor() : before_(new Before) {
  CPU_ZERO(&before_->processors);
  EXPECT_EQ(0, sched_getaffinity(0, sizeof before_->processors, &before_->processors));
  int processor = 0;
  while (!CPU_ISSET(processor, &before_->processors)) {
    ++processor;
  }
  cpu_set_t one;
  CPU_ZERO(&one);
  CPU_SET(processor, &one);
  EXPECT_EQ(0, sched_setaffinity(0, sizeof one, &one));
}

OneProcessor::~OneProcessor() {
  sched_setaffinity(0, sizeof before_->processors, &before_->processors);
}

}  // namespace lx_test
