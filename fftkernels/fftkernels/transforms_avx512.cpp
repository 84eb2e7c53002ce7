// SPDX-License-Identifier: BSD-3-Clause
// Compiled for AVX-512 alone, and entered only where the processor has it.
#include "fftkernels/fftkernels/transform_table.h"

#if defined(__AVX512F__) && defined(__AVX512DQ__) && defined(__AVX512VL__)

#include "fftkernels/fftkernels/make_table.h"

namespace lx {
namespace {

struct Avx512 {
  template <class T>
  static constexpr int kLanes = 64 / sizeof(T);
};

}  // namespace

const TransformTable* Avx512Transforms() {
  if (__builtin_cpu_supports("avx512f") == 0 || __builtin_cpu_supports("avx512dq") == 0 ||
      __builtin_cpu_supports("avx512vl") == 0 || __builtin_cpu_supports("fma") == 0) {
    return nullptr;
  }
  static const TransformTable table = MakeTransformTable<Avx512>();
  return &table;
}

}  // namespace lx

#else

namespace lx {

const TransformTable* Avx512Transforms() { return nullptr; }

}  // namespace lx

#endif
