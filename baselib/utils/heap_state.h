// SPDX-License-Identifier: BSD-3-Clause
// What the allocator keeps for the whole process. For its own two sources, and for tests that
// look whether the lock is held.
#pragma once

#include <atomic>
#include <bit>
#include <cstdint>
#include <mutex>

#include "baselib/utils/heap_tracking.h"

namespace lx {

struct HeapState {
  // Both switches begin as given; a delivered build gives 0.
  constexpr explicit HeapState(std::int32_t tracking) : enabled(tracking), debug(tracking) {}

  std::atomic<std::int32_t> enabled;
  std::atomic<std::int32_t> debug;
  std::atomic<std::int32_t> trace{0};
  HeapHooks normalHooks;
  HeapHooks imageHooks;
  HeapInfo normal{};
  HeapInfo image{};
  bool normalReady = false;
  bool imageReady = false;
  std::atomic<bool> mutexReady{false};  // it has been taken once

  // Never destroyed: blocks are freed by static destructors too.
  static std::recursive_mutex& Mutex() {
    static auto* mutex = new std::recursive_mutex;
    return *mutex;
  }
};

// An address to be printed. Whether a block is still there does not matter.
inline const void* AsPointer(std::uintptr_t address) { return std::bit_cast<const void*>(address); }

// One load away, since every allocation looks at it.
extern HeapState heapState;
inline HeapState& heap_state() { return heapState; }

}  // namespace lx
