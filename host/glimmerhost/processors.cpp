// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/processors.h"

#include <cmath>

#include "host/support/failure.h"
#include "host/support/system.h"
#include "host/support/text.h"

namespace glimmerhost {

void NarrowProcessors(const std::string& count) {
  if (count.empty()) {
    return;
  }
  const int available = AllowedProcessors();
  if (available == 0) {
    throw Failure("--threads " + count + ": this system does not tell its processors");
  }
  double wanted = 0.0;
  if (!ParseNumber(count, &wanted) || wanted != std::floor(wanted) || wanted < 1.0 ||
      wanted > available) {
    throw MustBe("--threads",
                 "a whole number from 1 to " + std::to_string(available) +
                     ", the processors that this process may run on",
                 count);
  }
  if (!KeepProcessors(static_cast<int>(wanted))) {
    throw Failure("--threads " + count + ": this system refuses it");
  }
}

}  // namespace glimmerhost
