// SPDX-License-Identifier: BSD-3-Clause
#include <cstddef>
#include <cstdlib>
#include <new>

#include "tests/fftkernels/counted_heap.h"

namespace lx_test {

void AllocateAligned() {
  static void* volatile kept;
  kept = std::aligned_alloc(64, 64);
  std::free(kept);
}

}  // namespace lx_test

extern "C" {

void* __real_aligned_alloc(std::size_t alignment, std::size_t size);
int __real_posix_memalign(void** block, std::size_t alignment, std::size_t size);
void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real__ZnwmSt11align_val_t(std::size_t size, std::align_val_t alignment);
void* __real__ZnamSt11align_val_t(std::size_t size, std::align_val_t alignment);

void* __wrap_aligned_alloc(std::size_t alignment, std::size_t size) {
  ++lx_test::allocations;
  return __real_aligned_alloc(alignment, size);
}

int __wrap_posix_memalign(void** block, std::size_t alignment, std::size_t size) {
  ++lx_test::allocations;
  return __real_posix_memalign(block, alignment, size);
}

void* __wrap__Znwm(std::size_t size) {
  ++lx_test::allocations;
  return __real__Znwm(size);
}

void* __wrap__Znam(std::size_t size) {
  ++lx_test::allocations;
  return __real__Znam(size);
}

void* __wrap__ZnwmSt11align_val_t(std::size_t size, std::align_val_t alignment) {
  ++lx_test::allocations;
  return __real__ZnwmSt11align_val_t(size, alignment);
}

void* __wrap__ZnamSt11align_val_t(std::size_t size, std::align_val_t alignment) {
  ++lx_test::allocations;
  return __real__ZnamSt11align_val_t(size, alignment);
}

}  // extern "C"
