// SPDX-License-Identifier: BSD-3-Clause
// Compiled for AVX2 alone, and entered only where the processor has it.
#include "fftlib/backends/fast/line_operations.h"

#if defined(__AVX2__)

#include "fftlib/backends/fast/line_operations_of.h"

namespace lx {
namespace {
struct Avx2 {};
}  // namespace

const LineOperations* Avx2LineOperations() {
  static constexpr LineOperations kOperations = LineOperationsOf<Avx2, 4>::Table();
  return __builtin_cpu_supports("avx2") != 0 ? &kOperations : nullptr;
}

}  // namespace lx

#else

namespace lx {

const LineOperations* Avx2LineOperations() { return nullptr; }

}  // namespace lx

#endif
