// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/clock.h"

#include <cstdint>

#include "baselib/platform/platform.h"
#include "baselib/threads/module_state.h"

namespace lx {
namespace {

double ToDouble(std::int64_t count) {
  const auto high = static_cast<std::int32_t>(count >> 32);
  const auto low = static_cast<std::uint32_t>(count);
  return high * 4294967296.0 + low;
}

}  // namespace

SystemState& system_state() {
  static constinit SystemState state;
  return state;
}

double get_seconds() {
  SystemState& state = system_state();
  if (state.counterFrequency.load(std::memory_order_acquire) < 0.0) {
    // Two threads may both come here, and store the same.
    const double frequency = ToDouble(GetPlatform().counterFrequency());
    state.counterPeriod.store(1.0 / frequency, std::memory_order_relaxed);
    state.counterFrequency.store(frequency, std::memory_order_release);
  }
  return ToDouble(GetPlatform().counter()) * state.counterPeriod.load(std::memory_order_relaxed);
}

}  // namespace lx
