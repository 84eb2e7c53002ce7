// SPDX-License-Identifier: BSD-3-Clause
#include <cstdint>
#include <ctime>

#include "baselib/platform/clocks.h"

namespace lx::native {
namespace {

constexpr std::int64_t kNanoseconds = 1000000000;  // in a second

}  // namespace

std::int64_t Counter() {
  timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return now.tv_sec * kNanoseconds + now.tv_nsec;
}

std::int64_t CounterFrequency() { return kNanoseconds; }

std::uint32_t TickCount() {
  constexpr std::int64_t kNanosecondsInOne = 1000000;
  return static_cast<std::uint32_t>(Counter() / kNanosecondsInOne);
}

void Sleep(std::uint32_t milliseconds) {
  const timespec time{milliseconds / 1000, static_cast<long>(milliseconds % 1000) * 1000000};
  nanosleep(&time, nullptr);
}

double LocalDaySeconds() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_r(&now, &local);
  return (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
}

}  // namespace lx::native
