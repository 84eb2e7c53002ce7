// SPDX-License-Identifier: BSD-3-Clause
// Vectors of 128 bits, which every x86-64 and every arm64 processor has.
#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/backends/fast/line_operations_of.h"

namespace lx {
namespace {
struct Vector128 {};
}  // namespace

const LineOperations& Vector128LineOperations() {
  static constexpr LineOperations kOperations = LineOperationsOf<Vector128, 2>::Table();
  return kOperations;
}

}  // namespace lx
