// SPDX-License-Identifier: BSD-3-Clause
// One line at a time: what the other forms are measured by.
#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/backends/fast/line_operations_of.h"

namespace lx {
namespace {
struct Plain {};
}  // namespace

const LineOperations& PlainLineOperations() {
  static constexpr LineOperations kOperations = LineOperationsOf<Plain, 1>::Table();
  return kOperations;
}

const LineOperations& GetLineOperations() {
  static const LineOperations* const operations = [] {
    for (const LineOperations* wide : {Avx512LineOperations(), Avx2LineOperations()}) {
      if (wide != nullptr) {
        return wide;
      }
    }
    return &Vector128LineOperations();
  }();
  return *operations;
}

}  // namespace lx
