// SPDX-License-Identifier: BSD-3-Clause
// Runs what the window does with each of its requests for memory refused once.
#pragma once

#include <gtest/gtest.h>

#include "tests/support/refused_new.h"

namespace viewer_test {

// Runs the work with the first request refused, the second and so on, until a run comes through.
// None of them may keep memory, but for what is allowed. Returns how many were refused.
//   work  takes n, makes a RefusedNew of it for as long as requests are to be counted, and returns
//         whether one was refused
//   mayKeep  blocks of a run
template <class Work>
long RefuseEach(const Work& work, long mayKeep = 0) {
  // What is made once for the whole program is no leak.
  work(0);
  for (long n = 1;; ++n) {
    const long before = lx_test::BlocksAlive();
    const bool wasRefused = work(n);
    EXPECT_LE(lx_test::BlocksAlive() - before, mayKeep) << "with request " << n << " refused";
    if (!wasRefused || testing::Test::HasFailure()) {
      return n - 1;
    }
  }
}

}  // namespace viewer_test
