// SPDX-License-Identifier: BSD-3-Clause
// One line at a time: what the other forms are measured by.
#include <atomic>

#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/backends/fast/line_operations_of.h"

namespace lx {
namespace {

struct Plain {};

// Null for the fastest.
std::atomic<const LineOperations*> inForce{nullptr};

}  // namespace

const LineOperations& PlainLineOperations() {
  static constexpr LineOperations kOperations = LineOperationsOf<Plain, 1>::Table();
  return kOperations;
}

const LineOperations& GetLineOperations() {
  if (const LineOperations* operations = inForce.load(std::memory_order_acquire)) {
    return *operations;
  }
  static const LineOperations* const fastest = [] {
    for (const LineOperations* wide : {Avx512LineOperations(), Avx2LineOperations()}) {
      if (wide != nullptr) {
        return wide;
      }
    }
    return &Vector128LineOperations();
  }();
  return *fastest;
}

ScopedLineOperations::ScopedLineOperations(const LineOperations* operations)
    : previous_(inForce.exchange(operations, std::memory_order_acq_rel)) {}

ScopedLineOperations::~ScopedLineOperations() {
  inForce.store(previous_, std::memory_order_release);
}

}  // namespace lx
