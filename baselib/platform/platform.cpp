// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/platform/platform.h"

#include <atomic>

namespace lx {
namespace {

// Null stands for the system's own table, so that no static needs to be built first.
std::atomic<const Platform*> inForce{nullptr};

}  // namespace

const Platform& SystemPlatform() {
  static const Platform table;
  return table;
}

const Platform& GetPlatform() {
  const Platform* table = inForce.load(std::memory_order_acquire);
  return table != nullptr ? *table : SystemPlatform();
}

constinit std::atomic<std::int32_t> heapWatchers{LX_TRACK_HEAP};

void AddHeapWatcher() { ++heapWatchers; }
void RemoveHeapWatcher() { --heapWatchers; }

ScopedPlatform::ScopedPlatform(const Platform* table)
    : previous_(inForce.exchange(table, std::memory_order_acq_rel)) {
  AddHeapWatcher();
}

ScopedPlatform::~ScopedPlatform() {
  RemoveHeapWatcher();
  inForce.store(previous_, std::memory_order_release);
}

}  // namespace lx
