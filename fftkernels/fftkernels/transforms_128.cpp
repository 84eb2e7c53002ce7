// SPDX-License-Identifier: BSD-3-Clause
// Vectors of 16 bytes: SSE2 and NEON, which every x86-64 and every arm64 has.
#include "fftkernels/fftkernels/transform_table.h"

#if defined(__SSE2__) || defined(__aarch64__)

#include "fftkernels/fftkernels/make_table.h"

namespace lx {
namespace {

struct Vector128 {
  template <class T>
  static constexpr int kLanes = 16 / sizeof(T);
};

}  // namespace

const TransformTable* Vector128Transforms() {
  static const TransformTable table = MakeTransformTable<Vector128>();
  return &table;
}

}  // namespace lx

#else

namespace lx {

const TransformTable* Vector128Transforms() { return nullptr; }

}  // namespace lx

#endif
