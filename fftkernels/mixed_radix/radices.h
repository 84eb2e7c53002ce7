// SPDX-License-Identifier: BSD-3-Clause
// The smallest transforms, of 1 to 10 complex numbers, each lane one of its own: forward, with
// exp(-2 pi i), in place and in order. Backward is forward with real and imaginary parts exchanged.
//
// Plain sums and products in a fixed order, so that lanes of any width give the same bits.
#pragma once

#include "fftkernels/fftkernels/vectors.h"

namespace lx {

template <int radix>
struct Radix;

// The arrays hold the numbers' parts. V is a vector type or a double.
template <int radix, class V>
LX_ALWAYS_INLINE void TransformRadix(V* re, V* im) {
  Radix<radix>::Run(re, im);
}

template <>
struct Radix<1> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* /*re*/, V* /*im*/) {}
};

template <>
struct Radix<2> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    const V differenceRe = re[0] - re[1];
    const V differenceIm = im[0] - im[1];
    re[0] = re[0] + re[1];
    im[0] = im[0] + im[1];
    re[1] = differenceRe;
    im[1] = differenceIm;
  }
};

// cos(2 pi k / n) and sin(2 pi k / n), as the nearest doubles.
inline constexpr double kSine3 = 0x1.bb67ae8584caap-1;
inline constexpr double kCosines5[] = {0x1.3c6ef372fe950p-2, -0x1.9e3779b97f4a8p-1};
inline constexpr double kSines5[] = {0x1.e6f0e134454ffp-1, 0x1.2cf2304755a5ep-1};
inline constexpr double kCosines7[] = {0x1.3f3a0e28bedd1p-1, -0x1.c7b90e3024582p-3,
                                       -0x1.cd4bca9cb5c71p-1};
inline constexpr double kSines7[] = {0x1.904c37505de4bp-1, 0x1.f329c0558e969p-1,
                                     0x1.bc4c04d71abc1p-2};
inline constexpr double kRootOfHalf = 0x1.6a09e667f3bcdp-1;
inline constexpr double kCosines9[] = {0x1.8836fa2cf5039p-1, 0x1.63a1a7e0b738ap-3,
                                       -0x1.e11f642522d1cp-1};  // k = 1, 2, 4
inline constexpr double kSines9[] = {0x1.491b7523c161dp-1, 0x1.f838b8c811c17p-1,
                                     0x1.5e3a8748a0bf5p-2};

template <>
struct Radix<3> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    const V sumRe = re[1] + re[2];
    const V sumIm = im[1] + im[2];
    const V turnRe = (im[1] - im[2]) * kSine3;
    const V turnIm = (re[1] - re[2]) * kSine3;
    const V middleRe = re[0] - sumRe * 0.5;
    const V middleIm = im[0] - sumIm * 0.5;
    re[0] = re[0] + sumRe;
    im[0] = im[0] + sumIm;
    re[1] = middleRe + turnRe;
    im[1] = middleIm - turnIm;
    re[2] = middleRe - turnRe;
    im[2] = middleIm + turnIm;
  }
};

template <>
struct Radix<4> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    const V aRe = re[0] + re[2];
    const V aIm = im[0] + im[2];
    const V bRe = re[0] - re[2];
    const V bIm = im[0] - im[2];
    const V cRe = re[1] + re[3];
    const V cIm = im[1] + im[3];
    const V dRe = re[1] - re[3];
    const V dIm = im[1] - im[3];
    re[0] = aRe + cRe;
    im[0] = aIm + cIm;
    re[1] = bRe + dIm;
    im[1] = bIm - dRe;
    re[2] = aRe - cRe;
    im[2] = aIm - cIm;
    re[3] = bRe - dIm;
    im[3] = bIm + dRe;
  }
};

// An odd prime: pairs from both ends share their cosines and sines.
template <int radix, class V>
LX_ALWAYS_INLINE void TransformPrime(const double* cosines, const double* sines, V* re, V* im) {
  constexpr int kHalf = radix / 2;
  V sumRe[kHalf];
  V sumIm[kHalf];
  V differenceRe[kHalf];
  V differenceIm[kHalf];
  const V firstRe = re[0];
  const V firstIm = im[0];
  ForEach<kHalf>([&](auto j) __attribute__((always_inline)) {
    sumRe[j] = re[j + 1] + re[radix - 1 - j];
    sumIm[j] = im[j + 1] + im[radix - 1 - j];
    differenceRe[j] = re[j + 1] - re[radix - 1 - j];
    differenceIm[j] = im[j + 1] - im[radix - 1 - j];
    re[0] = re[0] + sumRe[j];
    im[0] = im[0] + sumIm[j];
  });
  ForEach<kHalf>([&](auto k) __attribute__((always_inline)) {
    V middleRe = firstRe;
    V middleIm = firstIm;
    V turnRe{};
    V turnIm{};
    ForEach<kHalf>([&](auto j) __attribute__((always_inline)) {
      constexpr int kAngle = (k + 1) * (j + 1) % radix;
      constexpr bool kIsPast = kAngle > kHalf;
      constexpr int kAt = (kIsPast ? radix - kAngle : kAngle) - 1;
      middleRe = middleRe + sumRe[j] * cosines[kAt];
      middleIm = middleIm + sumIm[j] * cosines[kAt];
      const double sine = kIsPast ? -sines[kAt] : sines[kAt];
      if constexpr (j == 0) {
        turnRe = differenceRe[j] * sine;
        turnIm = differenceIm[j] * sine;
      } else {
        turnRe = turnRe + differenceRe[j] * sine;
        turnIm = turnIm + differenceIm[j] * sine;
      }
    });
    re[k + 1] = middleRe + turnIm;
    im[k + 1] = middleIm - turnRe;
    re[radix - 1 - k] = middleRe - turnIm;
    im[radix - 1 - k] = middleIm + turnRe;
  });
}

template <>
struct Radix<5> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    TransformPrime<5>(kCosines5, kSines5, re, im);
  }
};

template <>
struct Radix<7> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    TransformPrime<7>(kCosines7, kSines7, re, im);
  }
};

// 2 n with n odd, without twiddles (I. J. Good, "The interaction algorithm and practical Fourier
// analysis", 1958): number n a + 2 b goes into pair b, and frequency n c + (n + 1) d comes from it.
template <int odd, class V>
LX_ALWAYS_INLINE void TransformTwice(V* re, V* im) {
  constexpr int kAll = 2 * odd;
  V evenRe[odd];
  V evenIm[odd];
  V oddRe[odd];
  V oddIm[odd];
  ForEach<odd>([&](auto b) __attribute__((always_inline)) {
    constexpr int kFirst = 2 * b % kAll;
    constexpr int kSecond = (odd + 2 * b) % kAll;
    evenRe[b] = re[kFirst] + re[kSecond];
    evenIm[b] = im[kFirst] + im[kSecond];
    oddRe[b] = re[kFirst] - re[kSecond];
    oddIm[b] = im[kFirst] - im[kSecond];
  });
  Radix<odd>::Run(evenRe, evenIm);
  Radix<odd>::Run(oddRe, oddIm);
  ForEach<odd>([&](auto d) __attribute__((always_inline)) {
    constexpr int kEven = (odd + 1) * d % kAll;
    constexpr int kOdd = (odd + (odd + 1) * d) % kAll;
    re[kEven] = evenRe[d];
    im[kEven] = evenIm[d];
    re[kOdd] = oddRe[d];
    im[kOdd] = oddIm[d];
  });
}

template <>
struct Radix<6> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    TransformTwice<3>(re, im);
  }
};

template <>
struct Radix<10> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    TransformTwice<5>(re, im);
  }
};

template <>
struct Radix<8> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    V evenRe[] = {re[0], re[2], re[4], re[6]};
    V evenIm[] = {im[0], im[2], im[4], im[6]};
    V oddRe[] = {re[1], re[3], re[5], re[7]};
    V oddIm[] = {im[1], im[3], im[5], im[7]};
    Radix<4>::Run(evenRe, evenIm);
    Radix<4>::Run(oddRe, oddIm);
    // Times exp(-2 pi i k / 8).
    const V oneRe = (oddRe[1] + oddIm[1]) * kRootOfHalf;
    const V oneIm = (oddIm[1] - oddRe[1]) * kRootOfHalf;
    const V threeRe = (oddIm[3] - oddRe[3]) * kRootOfHalf;
    const V threeIm = (oddRe[3] + oddIm[3]) * kRootOfHalf;
    re[0] = evenRe[0] + oddRe[0];
    im[0] = evenIm[0] + oddIm[0];
    re[4] = evenRe[0] - oddRe[0];
    im[4] = evenIm[0] - oddIm[0];
    re[1] = evenRe[1] + oneRe;
    im[1] = evenIm[1] + oneIm;
    re[5] = evenRe[1] - oneRe;
    im[5] = evenIm[1] - oneIm;
    re[2] = evenRe[2] + oddIm[2];
    im[2] = evenIm[2] - oddRe[2];
    re[6] = evenRe[2] - oddIm[2];
    im[6] = evenIm[2] + oddRe[2];
    re[3] = evenRe[3] + threeRe;
    im[3] = evenIm[3] - threeIm;
    re[7] = evenRe[3] - threeRe;
    im[7] = evenIm[3] + threeIm;
  }
};

template <>
struct Radix<9> {
  template <class V>
  LX_ALWAYS_INLINE static void Run(V* re, V* im) {
    V partRe[3][3];
    V partIm[3][3];
    ForEach<3>([&](auto a) __attribute__((always_inline)) {
      ForEach<3>([&](auto b) __attribute__((always_inline)) {
        partRe[a][b] = re[a + 3 * b];
        partIm[a][b] = im[a + 3 * b];
      });
      Radix<3>::Run(partRe[a], partIm[a]);
    });
    Turn<0>(partRe[1][1], partIm[1][1]);
    Turn<1>(partRe[1][2], partIm[1][2]);
    Turn<1>(partRe[2][1], partIm[2][1]);
    Turn<2>(partRe[2][2], partIm[2][2]);
    ForEach<3>([&](auto c) __attribute__((always_inline)) {
      V columnRe[] = {partRe[0][c], partRe[1][c], partRe[2][c]};
      V columnIm[] = {partIm[0][c], partIm[1][c], partIm[2][c]};
      Radix<3>::Run(columnRe, columnIm);
      ForEach<3>([&](auto d) __attribute__((always_inline)) {
        re[c + 3 * d] = columnRe[d];
        im[c + 3 * d] = columnIm[d];
      });
    });
  }

 private:
  template <int at, class V>
  LX_ALWAYS_INLINE static void Turn(V& re, V& im) {
    const V turned = re * kCosines9[at] + im * kSines9[at];
    im = im * kCosines9[at] - re * kSines9[at];
    re = turned;
  }
};

}  // namespace lx
