// SPDX-License-Identifier: BSD-3-Clause
// The larger transforms of one kind of processor, and choosing among the kinds.
#pragma once

#include <array>

namespace lx {

// Smaller ones are taken in by their callers.
inline constexpr int kFirstTableSize = 32;
inline constexpr int kLargestTransform = 8192;

// The place of a size in the arrays of a table.
constexpr int TableIndex(int n) {
  int index = 0;
  for (int size = kFirstTableSize; size < n; size *= 2) {
    ++index;
  }
  return index;
}

inline constexpr int kTableSizes = TableIndex(kLargestTransform) + 1;

struct TransformTable {
  template <class T>
  using Transform = std::array<void (*)(T* data), kTableSizes>;

  Transform<float> forwardComplexF32;
  Transform<float> inverseComplexF32;
  Transform<double> forwardComplexF64;
  Transform<double> inverseComplexF64;
  Transform<float> forwardRealF32;
  Transform<float> inverseRealF32;

  // a = a * b, as count complex numbers. a may be b.
  void (*multiplyF32)(float* a, const float* b, int count);
  void (*multiplyF64)(double* a, const double* b, int count);
};

const TransformTable& PlainTransforms();

// Null where the processor, or the build, does not have them. The first are for every x86-64 and
// every arm64.
const TransformTable* Vector128Transforms();
const TransformTable* Avx2Transforms();
const TransformTable* Avx512Transforms();

// The fastest that the processor has.
const TransformTable& GetTransforms();

}  // namespace lx
