// SPDX-License-Identifier: BSD-3-Clause
// The platform's counters, its wall clock and its sleep.
#pragma once

#include <cstdint>

namespace lx {

namespace native {

// A counter that never goes back, and how often a second it counts.
std::int64_t Counter();
std::int64_t CounterFrequency();

// Milliseconds since some moment, which begin again at 0 after 2^32.
std::uint32_t TickCount();

// Seconds since midnight by the wall clock, in local time.
double LocalDaySeconds();

void Sleep(std::uint32_t milliseconds);

}  // namespace native

struct ClockOperations {
  decltype(native::Counter)* counter = native::Counter;
  decltype(native::CounterFrequency)* counterFrequency = native::CounterFrequency;
  decltype(native::TickCount)* tickCount = native::TickCount;
  decltype(native::LocalDaySeconds)* localDaySeconds = native::LocalDaySeconds;
  decltype(native::Sleep)* sleep = native::Sleep;
};

}  // namespace lx
