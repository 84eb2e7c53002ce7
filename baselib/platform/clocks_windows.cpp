// SPDX-License-Identifier: BSD-3-Clause
#include <cstdint>
#include <ctime>

#include "baselib/platform/clocks.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {

std::int64_t Counter() {
  LARGE_INTEGER count;
  ::QueryPerformanceCounter(&count);
  return count.QuadPart;
}

std::int64_t CounterFrequency() {
  LARGE_INTEGER frequency;
  ::QueryPerformanceFrequency(&frequency);
  return frequency.QuadPart;
}

std::uint32_t TickCount() { return ::GetTickCount(); }

void Sleep(std::uint32_t milliseconds) { ::Sleep(milliseconds); }

double LocalDaySeconds() {
  const std::time_t now = std::time(nullptr);
  std::tm local{};
  localtime_s(&local, &now);
  return (local.tm_hour * 60 + local.tm_min) * 60 + local.tm_sec;
}

}  // namespace lx::native
