#include <cstddef>
#include <cstdlib>
#include <new>

#include "tests/fftkernels/counted_heap.h"

namespace lx_test {

std::atomic<int> allocations;

void AllocateAligned() {
  static void* volatile kept;
  kept = std::aligned_alloc(64, 64);
  std::free(kept);
}

}  // namespace lx_test

// The linker's names for a function and for what stands in its place.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void* __real_aligned_alloc(std::size_t alignment, std::size_t size);
int __real_posix_memalign(void** block, std::size_t alignment, std::size_t size);
void* __real__Znwm(std::size_t size);
void* __real__Znam(std::size_t size);
void* __real__ZnwmSt11align_val_t(std::size_t size, std::align_val_t alignment);
void* __real__ZnamSt11align_val_t(std::size_t size, std::align_val_t alignment);

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
