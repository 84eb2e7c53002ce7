// SPDX-License-Identifier: BSD-3-Clause
#include <sched.h>

#include <filesystem>
#include <iterator>

#include "tests/support/process_threads.h"

namespace lx_test {

int ThreadCount() {
  const std::filesystem::directory_iterator tasks("/proc/self/task");
  return static_cast<int>(std::distance(begin(tasks), end(tasks)));
}

int ToldProcessors() {
  cpu_set_t processors;
  CPU_ZERO(&processors);
  sched_getaffinity(0, sizeof processors, &processors);
  return CPU_COUNT(&processors);
}

}  // namespace lx_test
