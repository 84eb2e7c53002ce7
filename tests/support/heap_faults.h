// SPDX-License-Identifier: BSD-3-Clause
// A heap that counts and can refuse, in place of the system's for the length of a scope.
#pragma once

#include <cstddef>
#include <cstdint>

#include "baselib/platform/platform.h"

namespace lx_test {

class HeapFaults {
 public:
  HeapFaults();
  HeapFaults(const HeapFaults&) = delete;
  HeapFaults& operator=(const HeapFaults&) = delete;

  // Refuses the n-th allocation from now on, counted from 1, and no other. 0: none.
  void Refuse(int n);

  // Refuses every allocation from now on.
  void RefuseAll();

  int Allocations() const;
  int Alive() const;  // allocations that have not been released, since the scope began
  std::size_t LargestRequest() const;

  // What the other operations answer; the system's own until set.
  void SetProcessorCount(std::int32_t count);
  void SetPageSize(std::int32_t bytes);
  void SetEnvironment(bool hasVariable);

 private:
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

}  // namespace lx_test
