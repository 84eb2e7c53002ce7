// SPDX-License-Identifier: BSD-3-Clause
// Every allocation that the linked program makes, counted. The linker puts a counting twin in the
// place of each function that allocates; which they are differs between systems.
#pragma once

#include <atomic>

namespace lx_test {

extern std::atomic<int> allocations;

// Takes aligned memory from the C runtime, once, and gives it back.
void AllocateAligned();

}  // namespace lx_test
