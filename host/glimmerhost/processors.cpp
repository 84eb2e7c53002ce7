#include "host/glimmerhost/processors.h"

#include <sched.h>

#include <cmath>

#include "host/glimmerhost/failure.h"
#include "host/glimmerhost/page.h"

namespace glimmerhost {

void NarrowProcessors(const std::string& count) {
  if (count.empty()) {
    return;
  }
  cpu_set_t allowed;
  CPU_ZERO(&allowed);
  if (sched_getaffinity(0, sizeof allowed, &allowed) != 0) {
    throw Failure("--threads " + count + ": this system does not tell its processors");
  }
  const int available = CPU_COUNT(&allowed);
  double wanted = 0.0;
  if (!ParseNumber(count, &wanted) || wanted != std::floor(wanted) || wanted < 1.0 ||
      wanted > available) {
    throw UsageError("--threads " + count + ": allowed is a whole number from 1 to " +
                     std::to_string(available) + ", the processors that this process may run on");
  }
  cpu_set_t narrowed;
  CPU_ZERO(&narrowed);
  for (int processor = 0; CPU_COUNT(&narrowed) < static_cast<int>(wanted); ++processor) {
    if (CPU_ISSET(processor, &allowed)) {
      CPU_SET(processor, &narrowed);
    }
  }
  if (sched_setaffinity(0, sizeof narrowed, &narrowed) != 0) {
    throw Failure("--threads " + count + ": this system refuses it");
  }
}

}  // namespace glimmerhost
