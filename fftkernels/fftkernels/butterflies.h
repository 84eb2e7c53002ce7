// SPDX-License-Identifier: BSD-3-Clause
// Transforms of up to 16 values that lie in registers, as real and imaginary parts.
#pragma once

#include "fftkernels/fftkernels/split_order.h"
#include "fftkernels/fftkernels/vectors.h"

namespace lx {

inline constexpr int kForward = 1;
inline constexpr int kInverse = -1;

// cos(2 pi k / 16) for k of 0 to 4, and by symmetry for every k.
constexpr long double CosineOf16th(int k) {
  constexpr long double kQuarter[] = {1.0L, 0.923879532511286756128183189396788287L,
                                      0.707106781186547524400844362104849039L,
                                      0.382683432365089771728459984030398866L, 0.0L};
  k &= 15;
  if (k > 8) {
    k = 16 - k;
  }
  return k <= 4 ? kQuarter[k] : -kQuarter[8 - k];
}

// Multiplies by exp(2 pi i turns / 16), turns being known to the compiler.
template <class T, int turns, class V>
LX_ALWAYS_INLINE void Turn16th(V& re, V& im) {
  constexpr int kTurns = turns & 15;
  constexpr T kCos = static_cast<T>(CosineOf16th(kTurns));
  constexpr T kSin = static_cast<T>(CosineOf16th(kTurns - 4));
  const V a = re;
  const V b = im;
  if constexpr (kTurns == 0) {
  } else if constexpr (kTurns == 4) {
    re = -b;
    im = a;
  } else if constexpr (kTurns == 8) {
    re = -a;
    im = -b;
  } else if constexpr (kTurns == 12) {
    re = b;
    im = -a;
  } else if constexpr (kCos == kSin) {
    re = (a - b) * kCos;
    im = (a + b) * kCos;
  } else if constexpr (kCos == -kSin) {
    re = (a + b) * kCos;
    im = (b - a) * kCos;
  } else {
    re = a * kCos - b * kSin;
    im = b * kCos + a * kSin;
  }
}

// The transform of count values in place: forward from natural order into the order of
// PartsOf<count>(order), inverse the other way.
template <class T, SplitOrder order, int count, int direction, class V>
LX_ALWAYS_INLINE void TransformValues(V* re, V* im) {
  if constexpr (count > 1) {
    constexpr int kHalf = count / 2;
    constexpr bool kIsDown = order == SplitOrder::kDown;
    constexpr SplitOrder kOddOrder = kIsDown ? SplitOrder::kTurn : SplitOrder::kDown;
    // Of the odd half: by k steps of the circle's count, or back.
    constexpr int kStep = (kIsDown ? 16 : -16) / count;
    if constexpr (direction == kInverse) {
      TransformValues<T, SplitOrder::kDown, kHalf, direction>(re, im);
      TransformValues<T, kOddOrder, kHalf, direction>(re + kHalf, im + kHalf);
    }
    ForEach<kHalf>([&](auto k) __attribute__((always_inline)) {
      V& oddRe = re[kHalf + k];
      V& oddIm = im[kHalf + k];
      if constexpr (direction == kInverse) {
        Turn16th<T, -k * kStep>(oddRe, oddIm);
      }
      const V differenceRe = re[k] - oddRe;
      const V differenceIm = im[k] - oddIm;
      re[k] += oddRe;
      im[k] += oddIm;
      oddRe = differenceRe;
      oddIm = differenceIm;
      if constexpr (direction == kForward) {
        Turn16th<T, k * kStep>(oddRe, oddIm);
      }
    });
    if constexpr (direction == kForward) {
      TransformValues<T, SplitOrder::kDown, kHalf, direction>(re, im);
      TransformValues<T, kOddOrder, kHalf, direction>(re + kHalf, im + kHalf);
    }
  }
}

}  // namespace lx
