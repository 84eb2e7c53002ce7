// SPDX-License-Identifier: BSD-3-Clause
#include <malloc.h>

#include <cstddef>
#include <new>

#include "tests/fftkernels/counted_heap.h"

namespace lx_test {

void AllocateAligned() {
  static void* volatile kept;
  kept = _aligned_malloc(64, 64);
  _aligned_free(kept);
}

}  // namespace lx_test

extern "C" {

void* __real__Znwy(std::size_t size);
void* __real__Znay(std::size_t size);
void* __real__ZnwySt11align_val_t(std::size_t size, std::align_val_t alignment);
void* __real__ZnaySt11align_val_t(std::size_t size, std::align_val_t alignment);

// Declared as imported, and so called by way of a pointer, which is what has the name.
extern void* (*__real___imp__aligned_malloc)(std::size_t size, std::size_t alignment);

static void* CountedAligned(std::size_t size, std::size_t alignment) {
  ++lx_test::allocations;
  return __real___imp__aligned_malloc(size, alignment);
}

void* (*__wrap___imp__aligned_malloc)(std::size_t size, std::size_t alignment) = CountedAligned;

void* __wrap__Znwy(std::size_t size) {
  ++lx_test::allocations;
  return __real__Znwy(size);
}

void* __wrap__Znay(std::size_t size) {
  ++lx_test::allocations;
  return __real__Znay(size);
}

void* __wrap__ZnwySt11align_val_t(std::size_t size, std::align_val_t alignment) {
  ++lx_test::allocations;
  return __real__ZnwySt11align_val_t(size, alignment);
}

void* __wrap__ZnaySt11align_val_t(std::size_t size, std::align_val_t alignment) {
  ++lx_test::allocations;
  return __real__ZnaySt11align_val_t(size, alignment);
}

}  // extern "C"
