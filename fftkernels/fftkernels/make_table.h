// SPDX-License-Identifier: BSD-3-Clause
// For the sources that are each compiled for one kind of processor.
#pragma once

#include <utility>

#include "fftkernels/fftkernels/transform_table.h"
#include "fftkernels/fftkernels/transforms.h"

namespace lx {

// One vector of complex numbers.
template <class Vectors, class T>
LX_ALWAYS_INLINE void MultiplyVector(T* a, const T* b) {
  typename Vectors::Vector aRe;
  typename Vectors::Vector aIm;
  typename Vectors::Vector bRe;
  typename Vectors::Vector bIm;
  Vectors::LoadPairs(a, aRe, aIm);
  Vectors::LoadPairs(b, bRe, bIm);
  Vectors::StorePairs(a, aRe * bRe - aIm * bIm, aRe * bIm + aIm * bRe);
}

template <class Form, class T>
void MultiplyComplex(T* a, const T* b, int count) {
  constexpr int kLanes = Form::template kLanes<T>;
  using Vectors = Lanes<Form, T, kLanes>;
  int k = 0;
  for (; k + kLanes <= count; k += kLanes) {
    MultiplyVector<Vectors>(a + 2 * k, b + 2 * k);
  }
  // The rest in a vector too: a plain loop would be the compiler's to fuse as it likes, this way
  // where the arrays may overlap and that way where they may not.
  if (k < count) {
    const auto bytes = sizeof(T) * 2 * static_cast<unsigned>(count - k);
    T restOfA[2 * kLanes] = {};
    T restOfB[2 * kLanes] = {};
    __builtin_memcpy(restOfA, a + 2 * k, bytes);
    __builtin_memcpy(restOfB, b + 2 * k, bytes);
    MultiplyVector<Vectors>(restOfA, restOfB);
    __builtin_memcpy(a + 2 * k, restOfA, bytes);
  }
}

template <class Form>
TransformTable MakeTransformTable() {
  using F32 = Transforms<Form, float>;
  using F64 = Transforms<Form, double>;
  F32::template FillTables<kLargestTransform>();
  F64::template FillTables<kLargestTransform>();
  return [&]<int... i>(std::integer_sequence<int, i...>) {
    return TransformTable{{F32::template Forward<kFirstTableSize << i>...},
                          {F32::template Inverse<kFirstTableSize << i>...},
                          {F64::template Forward<kFirstTableSize << i>...},
                          {F64::template Inverse<kFirstTableSize << i>...},
                          {F32::template ForwardReal<kFirstTableSize << i>...},
                          {F32::template InverseReal<kFirstTableSize << i>...},
                          MultiplyComplex<Form, float>,
                          MultiplyComplex<Form, double>};
  }
  (std::make_integer_sequence<int, kTableSizes>{});
}

}  // namespace lx
