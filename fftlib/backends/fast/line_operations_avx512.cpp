// SPDX-License-Identifier: BSD-3-Clause
// Compiled for AVX-512 alone, and entered only where the processor has it.
#include "fftlib/backends/fast/line_operations.h"

#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512VL__)

#include "fftlib/backends/fast/line_operations_of.h"

namespace lx {
namespace {
struct Avx512 {};
}  // namespace

const LineOperations* Avx512LineOperations() {
  static constexpr LineOperations kOperations = LineOperationsOf<Avx512, 8>::Table();
  const bool has = __builtin_cpu_supports("avx512f") != 0 &&
                   __builtin_cpu_supports("avx512dq") != 0 &&
                   __builtin_cpu_supports("avx512vl") != 0;
  return has ? &kOperations : nullptr;
}

}  // namespace lx

#else

namespace lx {

const LineOperations* Avx512LineOperations() { return nullptr; }

}  // namespace lx

#endif
