// SPDX-License-Identifier: BSD-3-Clause
#include <sched.h>
#include <unistd.h>

#include <cerrno>
#include <cstddef>
#include <cstdint>
#include <cstdio>
#include <cstdlib>
#include <cstring>

#include "baselib/platform/process.h"

namespace lx::native {

// The affinity mask and not the machine: what binds a process to some processors
// (a host, a farm) decides how wide it works.
std::int32_t ProcessorCount() {
  cpu_set_t mask;
  CPU_ZERO(&mask);
  if (sched_getaffinity(0, sizeof mask, &mask) == 0) {
    return CPU_COUNT(&mask);
  }
  // A mask wider than cpu_set_t; the count of what is online is the next best answer.
  return static_cast<std::int32_t>(sysconf(_SC_NPROCESSORS_ONLN));
}

std::uint32_t ProcessId() { return static_cast<std::uint32_t>(getpid()); }

bool HasEnvironmentVariable(const char* name) { return std::getenv(name) != nullptr; }

std::uint32_t LastError() { return static_cast<std::uint32_t>(errno); }

void ErrorText(std::uint32_t error, char* text, std::size_t size) {
  char scratch[256];
  std::snprintf(text, size, "%s", strerror_r(static_cast<int>(error), scratch, sizeof scratch));
}

}  // namespace lx::native
