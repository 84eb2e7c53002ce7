// SPDX-License-Identifier: BSD-3-Clause
// Compiled for AVX-512 alone, and entered only where the processor has it: the emphasis
// curve, which is arithmetic throughout. The other loops wait for memory, and are AVX2's.
#include "fftlib/planes/row_operations.h"

#if defined(__AVX512F__) && defined(__AVX512DQ__)

#include <cstdint>

#include "fftlib/planes/curve_rows.h"

namespace lx {

using Lanes8 = double __attribute__((vector_size(64)));

template <>
struct LaneBits<Lanes8> {
  using Type = std::uint64_t __attribute__((vector_size(64)));
};

const RowOperations* Avx512RowOperations() {
  const RowOperations* avx2 = Avx2RowOperations();
  if (avx2 == nullptr || __builtin_cpu_supports("avx512f") == 0 ||
      __builtin_cpu_supports("avx512dq") == 0) {
    return nullptr;
  }
  static const RowOperations operations = [avx2] {
    RowOperations mixed = *avx2;
    mixed.applyCurve = CurveRows<Lanes8>::Apply;
    mixed.undoCurve = CurveRows<Lanes8>::Undo;
    return mixed;
  }();
  return &operations;
}

}  // namespace lx

#else

namespace lx {

const RowOperations* Avx512RowOperations() { return nullptr; }

}  // namespace lx

#endif
