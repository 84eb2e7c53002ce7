// SPDX-License-Identifier: BSD-3-Clause
// The transforms of up to 16 numbers, which a caller takes in whole.
#pragma once

#include "fftkernels/fftkernels/butterflies.h"

namespace lx {

template <class T>
struct SmallTransforms {
  template <int n, int direction>
  LX_ALWAYS_INLINE static void Complex(T* data) {
    T re[n];
    T im[n];
    ForEach<n>([&](auto k) __attribute__((always_inline)) {
      re[k] = data[2 * k];
      im[k] = data[2 * k + 1];
    });
    TransformValues<T, SplitOrder::kDown, n, direction>(re, im);
    ForEach<n>([&](auto k) __attribute__((always_inline)) {
      data[2 * k] = re[k];
      data[2 * k + 1] = im[k];
    });
  }

  // The first half of the numbers folds onto a real transform of n/2, the second becomes a complex
  // one of n/4. See transforms.h.
  template <int n>
  LX_ALWAYS_INLINE static void ForwardReal(T* data) {
    if constexpr (n == 2) {
      SumAndDifference(data);
    } else {
      constexpr int kHalf = n / 2;
      ForEach<n / 4>([&](auto j) __attribute__((always_inline)) {
        const T e = data[2 * j];
        const T f = data[2 * j + 1];
        const T g = data[kHalf + 2 * j];
        const T h = data[kHalf + 2 * j + 1];
        T re = e - f;
        T im = g - h;
        Turn16th<T, j * 16 / n>(re, im);
        data[2 * j] = e + f;
        data[2 * j + 1] = g + h;
        data[kHalf + 2 * j] = re;
        data[kHalf + 2 * j + 1] = im;
      });
      ForwardReal<n / 2>(data);
      Complex<n / 4, kForward>(data + kHalf);
    }
  }

  template <int n>
  LX_ALWAYS_INLINE static void InverseReal(T* data) {
    if constexpr (n == 2) {
      SumAndDifference(data);
    } else {
      constexpr int kHalf = n / 2;
      Complex<n / 4, kInverse>(data + kHalf);
      InverseReal<n / 2>(data);
      ForEach<n / 4>([&](auto j) __attribute__((always_inline)) {
        const T sumRe = data[2 * j];
        const T sumIm = data[2 * j + 1];
        T re = data[kHalf + 2 * j];
        T im = data[kHalf + 2 * j + 1];
        Turn16th<T, -j * 16 / n>(re, im);
        data[2 * j] = sumRe + re;
        data[2 * j + 1] = sumRe - re;
        data[kHalf + 2 * j] = sumIm + im;
        data[kHalf + 2 * j + 1] = sumIm - im;
      });
    }
  }

 private:
  // Two numbers, the same there and back.
  LX_ALWAYS_INLINE static void SumAndDifference(T* data) {
    const T a = data[0];
    data[0] = a + data[1];
    data[1] = a - data[1];
  }
};

}  // namespace lx
