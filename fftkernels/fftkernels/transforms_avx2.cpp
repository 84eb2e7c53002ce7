// SPDX-License-Identifier: BSD-3-Clause
// Compiled for AVX2 and fused multiply-add alone, and entered only where the processor has them.
#include "fftkernels/fftkernels/transform_table.h"

#if defined(__AVX2__) && defined(__FMA__)

#include "fftkernels/fftkernels/make_table.h"

namespace lx {
namespace {

struct Avx2 {
  template <class T>
  static constexpr int kLanes = 32 / sizeof(T);
};

}  // namespace

const TransformTable* Avx2Transforms() {
  if (__builtin_cpu_supports("avx2") == 0 || __builtin_cpu_supports("fma") == 0) {
    return nullptr;
  }
  static const TransformTable table = MakeTransformTable<Avx2>();
  return &table;
}

}  // namespace lx

#else

namespace lx {

const TransformTable* Avx2Transforms() { return nullptr; }

}  // namespace lx

#endif
