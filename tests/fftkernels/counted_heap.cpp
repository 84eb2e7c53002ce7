// SPDX-License-Identifier: BSD-3-Clause
// What every system's C library has. The operators have other names where a size is another type.
#include "tests/fftkernels/counted_heap.h"

#include <cstddef>

namespace lx_test {

std::atomic<int> allocations;

}  // namespace lx_test

// The linker's names for a function and for what stands in its place.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);

void* __wrap_malloc(std::size_t size) {
  ++lx_test::allocations;
  return __real_malloc(size);
}

void* __wrap_calloc(std::size_t count, std::size_t size) {
  ++lx_test::allocations;
  return __real_calloc(count, size);
}

void* __wrap_realloc(void* block, std::size_t size) {
  ++lx_test::allocations;
  return __real_realloc(block, size);
}

}  // extern "C"
