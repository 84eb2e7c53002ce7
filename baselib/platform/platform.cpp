#include "baselib/platform/platform.h"

#include <atomic>

namespace lx {
namespace {

// Null stands for the system's own table, so that no static needs to be built first.
std::atomic<const Platform*> inForce{nullptr};

}  // namespace

const Platform& GetPlatform() {
  const Platform* table = inForce.load(std::memory_order_acquire);
  return table != nullptr ? *table : SystemPlatform();
}

ScopedPlatform::ScopedPlatform(const Platform* table)
    : previous_(inForce.exchange(table, std::memory_order_acq_rel)) {}

ScopedPlatform::~ScopedPlatform() { inForce.store(previous_, std::memory_order_release); }

}  // namespace lx
