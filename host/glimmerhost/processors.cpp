// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/processors.h"

#include <cmath>
#include <iostream>

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
  if (!ParseNumber(count, &wanted) || !std::isfinite(wanted) || wanted != std::floor(wanted) ||
      wanted < 1.0) {
    throw MustBe("--threads", "a whole number from 1 on", count);
  }
  if (wanted > available) {
    // One line in one write: processes of a farm may share a terminal.
    std::cerr << "glimmerhost: --threads " + OneLine(count) + ": all " + std::to_string(available) +
                     " that this process may run on are used\n";
    return;
  }
  if (!KeepProcessors(static_cast<int>(wanted))) {
    throw Failure("--threads " + count + ": this system refuses it");
  }
}

}  // namespace glimmerhost
