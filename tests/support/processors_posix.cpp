// SPDX-License-Identifier: BSD-3-Clause
#include <sched.h>

#include "tests/support/processors.h"

namespace lx_test {

struct ProcessorsAsBefore::Mask {
  cpu_set_t processors;
};

int ProcessorCount() {
  cpu_set_t now;
  return sched_getaffinity(0, sizeof now, &now) == 0 ? CPU_COUNT(&now) : 0;
}

ProcessorsAsBefore::ProcessorsAsBefore() : mask_(std::make_unique<Mask>()) {
  sched_getaffinity(0, sizeof mask_->processors, &mask_->processors);
}

ProcessorsAsBefore::~ProcessorsAsBefore() {
  sched_setaffinity(0, sizeof mask_->processors, &mask_->processors);
}

}  // namespace lx_test
