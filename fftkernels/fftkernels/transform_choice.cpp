// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/fftkernels/transform_table.h"

namespace lx {

const TransformTable& GetTransforms() {
  static const TransformTable& fastest = []() -> const TransformTable& {
    if (const TransformTable* table = Avx512Transforms()) {
      return *table;
    }
    if (const TransformTable* table = Avx2Transforms()) {
      return *table;
    }
    if (const TransformTable* table = Vector128Transforms()) {
      return *table;
    }
    return PlainTransforms();
  }();
  return fastest;
}

}  // namespace lx
