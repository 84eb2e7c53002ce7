// SPDX-License-Identifier: BSD-3-Clause
// operator new of a whole test program, which counts and can refuse the n-th request on whatever
// thread. A program has it by listing refused_new.cpp among its sources. Over-aligned memory, and
// malloc's, stay the system's own.
#pragma once

namespace lx_test {

// While one lives, the n-th request is refused, counted from 1, and no other. One at a time.
class RefusedNew {
 public:
  explicit RefusedNew(long n);
  ~RefusedNew();
  RefusedNew(const RefusedNew&) = delete;
  RefusedNew& operator=(const RefusedNew&) = delete;

  // False where there were fewer requests.
  bool WasRefused() const;
};

// Blocks that have not been deleted, since the program began.
long BlocksAlive();

}  // namespace lx_test
