// For the sources that are each compiled for one kind of processor.
#pragma once

#include <utility>

#include "fftkernels/fftkernels/transform_table.h"
#include "fftkernels/fftkernels/transforms.h"

namespace lx {

template <class Form, class T>
void MultiplyComplex(T* a, const T* b, int count) {
  constexpr int kLanes = Form::template kLanes<T>;
  using Vectors = Lanes<Form, T, kLanes>;
  int k = 0;
  for (; k + kLanes <= count; k += kLanes) {
    typename Vectors::Vector aRe;
    typename Vectors::Vector aIm;
    typename Vectors::Vector bRe;
    typename Vectors::Vector bIm;
    Vectors::LoadPairs(a + 2 * k, aRe, aIm);
    Vectors::LoadPairs(b + 2 * k, bRe, bIm);
    Vectors::StorePairs(a + 2 * k, aRe * bRe - aIm * bIm, aRe * bIm + aIm * bRe);
  }
  for (; k < count; ++k) {
    const T re = a[2 * k] * b[2 * k] - a[2 * k + 1] * b[2 * k + 1];
    const T im = a[2 * k] * b[2 * k + 1] + a[2 * k + 1] * b[2 * k];
    a[2 * k] = re;
    a[2 * k + 1] = im;
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
