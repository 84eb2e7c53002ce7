// SPDX-License-Identifier: BSD-3-Clause
// The kernels as tables of functions, for tests that go over all thirteen sizes.
#pragma once

#include <array>
#include <type_traits>
#include <utility>

#include "fftkernels/fftkernels.h"

namespace lx_test {

template <class T>
struct ComplexKernels {
  int n;
  void (*forward)(T* data);
  void (*inverse)(T* data);
  void (*scale)(T* data);
  void (*multiply)(T* a, const T* b);
};

struct RealKernels {
  int n;
  void (*forward)(float* data);
  void (*inverse)(float* data);
  void (*scale)(float* data);
  void (*multiply)(float* a, const float* b);
};

inline constexpr int kSizes = 13;

template <class T, int n>
constexpr ComplexKernels<T> ComplexKernelsOfSize() {
  if constexpr (std::is_same_v<T, float>) {
    return {n, lx::ForwardComplexF32<n>, lx::InverseComplexF32<n>, lx::ScaleComplexF32<n>,
            lx::MulComplexF32<n>};
  } else {
    return {n, lx::ForwardComplexF64<n>, lx::InverseComplexF64<n>, lx::ScaleComplexF64<n>,
            lx::MulComplexF64<n>};
  }
}

template <int n>
constexpr RealKernels RealKernelsOfSize() {
  return {n, lx::ForwardRealF32<n>, lx::InverseRealF32<n>, lx::ScaleRealF32<n>, lx::MulRealF32<n>};
}

// 2, 4 .. 8192.
template <class T>
std::array<ComplexKernels<T>, kSizes> EveryComplexSize() {
  return []<int... k>(std::integer_sequence<int, k...>) {
    return std::array<ComplexKernels<T>, kSizes>{ComplexKernelsOfSize<T, 2 << k>()...};
  }
  (std::make_integer_sequence<int, kSizes>());
}

inline std::array<RealKernels, kSizes> EveryRealSize() {
  return []<int... k>(std::integer_sequence<int, k...>) {
    return std::array<RealKernels, kSizes>{RealKernelsOfSize<2 << k>()...};
  }
  (std::make_integer_sequence<int, kSizes>());
}

}  // namespace lx_test
