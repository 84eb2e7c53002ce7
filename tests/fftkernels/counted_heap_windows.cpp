#include <malloc.h>

#include <cstddef>
#include <new>

#include "tests/fftkernels/counted_heap.h"

namespace lx_test {

std::atomic<int> allocations;

void AllocateAligned() {
  static void* volatile kept;
  kept = _aligned_malloc(64, 64);
  _aligned_free(kept);
}

}  // namespace lx_test

// The linker's names for a function and for what stands in its place.
extern "C" {

void* __real_malloc(std::size_t size);
void* __real_calloc(std::size_t count, std::size_t size);
void* __real_realloc(void* block, std::size_t size);
void* __real__Znwy(std::size_t size);
void* __real__Znay(std::size_t size);
void* __real__ZnwySt11align_val_t(std::size_t size, std::align_val_t alignment);
void* __real__ZnaySt11align_val_t(std::size_t size, std::align_val_t alignment);

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
