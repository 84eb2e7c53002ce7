// SPDX-License-Identifier: BSD-3-Clause
// Plain numbers, for any processor, and for comparing the others with.
#include "fftkernels/fftkernels/make_table.h"

namespace lx {
namespace {

struct Plain {
  template <class T>
  static constexpr int kLanes = 1;
};

}  // namespace

const TransformTable& PlainTransforms() {
  static const TransformTable table = MakeTransformTable<Plain>();
  return table;
}

}  // namespace lx
