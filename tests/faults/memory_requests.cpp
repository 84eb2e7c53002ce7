// SPDX-License-Identifier: BSD-3-Clause
// malloc and its family. The C library's own functions stand behind them under other names, so that
// nothing has to be looked up, which would ask for memory itself.
#include <errno.h>
#include <stddef.h>

#include <atomic>

#include "tests/faults/counted_requests.h"

extern "C" {
void* __libc_malloc(size_t size);
void* __libc_calloc(size_t count, size_t size);
void* __libc_realloc(void* block, size_t size);
void* __libc_memalign(size_t alignment, size_t size);
void __libc_free(void* block);
}

namespace {

using faults::IsRefused;
using faults::Kind;

std::atomic<long> alive{0};

void* Counted(void* block) {
  if (block != nullptr) {
    ++alive;
  }
  return block;
}

bool IsOutOfMemory(const char* what) {
  if (!IsRefused(Kind::kMemory, what)) {
    return false;
  }
  errno = ENOMEM;
  return true;
}

}  // namespace

namespace faults {
extern "C" long BlocksAlive() { return alive; }
}  // namespace faults

#define EXPORTED __attribute__((visibility("default")))

extern "C" {

EXPORTED void* malloc(size_t size) noexcept {
  return IsOutOfMemory("malloc") ? nullptr : Counted(__libc_malloc(size));
}

EXPORTED void* calloc(size_t count, size_t size) noexcept {
  return IsOutOfMemory("calloc") ? nullptr : Counted(__libc_calloc(count, size));
}

EXPORTED void* realloc(void* block, size_t size) noexcept {
  if (IsOutOfMemory("realloc")) {
    return nullptr;
  }
  void* const moved = __libc_realloc(block, size);
  if (block == nullptr) {
    return Counted(moved);
  }
  if (moved == nullptr && size == 0) {
    --alive;
  }
  return moved;
}

EXPORTED void* memalign(size_t alignment, size_t size) noexcept {
  return IsOutOfMemory("memalign") ? nullptr : Counted(__libc_memalign(alignment, size));
}

EXPORTED void* aligned_alloc(size_t alignment, size_t size) noexcept {
  return IsOutOfMemory("aligned_alloc") ? nullptr : Counted(__libc_memalign(alignment, size));
}

EXPORTED int posix_memalign(void** block, size_t alignment, size_t size) noexcept {
  if (IsOutOfMemory("posix_memalign")) {
    return ENOMEM;
  }
  *block = Counted(__libc_memalign(alignment, size));
  return *block == nullptr ? ENOMEM : 0;
}

EXPORTED void free(void* block) noexcept {
  if (block != nullptr) {
    --alive;
  }
  __libc_free(block);
}

}  // extern "C"
