// SPDX-License-Identifier: BSD-3-Clause
// The bodies of fftkernels.h: small sizes in place, large ones by the processor's table.
#pragma once

#include "fftkernels/fftkernels.h"

namespace lx {

template <int n>
inline void ForwardComplexF32(float* data) {
  static_assert(IsKernelSize(n));
  if constexpr (n < kFirstTableSize) {
    SmallTransforms<float>::Complex<n, kForward>(data);
  } else {
    GetTransforms().forwardComplexF32[TableIndex(n)](data);
  }
}

template <int n>
inline void InverseComplexF32(float* data) {
  static_assert(IsKernelSize(n));
  if constexpr (n < kFirstTableSize) {
    SmallTransforms<float>::Complex<n, kInverse>(data);
  } else {
    GetTransforms().inverseComplexF32[TableIndex(n)](data);
  }
}

template <int n>
inline void ForwardComplexF64(double* data) {
  static_assert(IsKernelSize(n));
  if constexpr (n < kFirstTableSize) {
    SmallTransforms<double>::Complex<n, kForward>(data);
  } else {
    GetTransforms().forwardComplexF64[TableIndex(n)](data);
  }
}

template <int n>
inline void InverseComplexF64(double* data) {
  static_assert(IsKernelSize(n));
  if constexpr (n < kFirstTableSize) {
    SmallTransforms<double>::Complex<n, kInverse>(data);
  } else {
    GetTransforms().inverseComplexF64[TableIndex(n)](data);
  }
}

template <int n>
inline void ForwardRealF32(float* data) {
  static_assert(IsKernelSize(n));
  if constexpr (n < kFirstTableSize) {
    SmallTransforms<float>::ForwardReal<n>(data);
  } else {
    GetTransforms().forwardRealF32[TableIndex(n)](data);
  }
}

template <int n>
inline void InverseRealF32(float* data) {
  static_assert(IsKernelSize(n));
  if constexpr (n < kFirstTableSize) {
    SmallTransforms<float>::InverseReal<n>(data);
  } else {
    GetTransforms().inverseRealF32[TableIndex(n)](data);
  }
}

template <class T>
inline void ScaleNumbers(T* data, int count, T factor) {
  for (int i = 0; i < count; ++i) {
    data[i] *= factor;
  }
}

template <int n>
inline void ScaleComplexF32(float* data) {
  static_assert(IsKernelSize(n));
  ScaleNumbers(data, 2 * n, 1.0F / n);
}

template <int n>
inline void ScaleComplexF64(double* data) {
  static_assert(IsKernelSize(n));
  ScaleNumbers(data, 2 * n, 1.0 / n);
}

template <int n>
inline void ScaleRealF32(float* data) {
  static_assert(IsKernelSize(n));
  ScaleNumbers(data, 2, 1.0F / n);
  ScaleNumbers(data + 2, n - 2, 2.0F / n);
}

template <int n>
inline void MulComplexF32(float* a, const float* b) {
  static_assert(IsKernelSize(n));
  GetTransforms().multiplyF32(a, b, n);
}

template <int n>
inline void MulComplexF64(double* a, const double* b) {
  static_assert(IsKernelSize(n));
  GetTransforms().multiplyF64(a, b, n);
}

template <int n>
inline void MulRealF32(float* a, const float* b) {
  static_assert(IsKernelSize(n));
  a[0] *= b[0];
  a[1] *= b[1];
  GetTransforms().multiplyF32(a + 2, b + 2, n / 2 - 1);
}

}  // namespace lx
