// SPDX-License-Identifier: BSD-3-Clause
// Powers of numbers from 0 to 1, on any number of lanes with the same bits.
//
// The C library's pow gives other bits on another system, and takes one number at a time.
// This one is plain arithmetic that rounds after every step, so it comes out alike in every
// build. Results are less than one unit in the last place off.
//
// log2(y) = k + 2 / ln 2 * atanh(s), s = (m - 1) / (m + 1), y = m * 2^k; carried in two
// doubles, since the exponent multiplies its error. 2^t = 1 + t ln 2 + t^2 * polynomial,
// over half a step either side of a whole number.
#pragma once

#include <bit>
#include <cstdint>

namespace lx {

// What differs between one double and a vector of doubles: the integers of the same width.
// A build with wider lanes adds its own.
template <class Lanes>
struct LaneBits;

template <>
struct LaneBits<double> {
  using Type = std::uint64_t;
};

// The exponent of a power in two halves, for exact products.
struct PowerExponent {
  double high = 1.0;  // its upper 26 bits
  double low = 0.0;
};

// Everything below is inlined into the loops that use it: the constants then stand beside
// the instructions, and consecutive samples overlap.
namespace power {

// Coefficients from the constant up, by Chebyshev interpolation with sixty digits:
//   kLog  (log2((1 + s) / (1 - s)) - 2 s / ln 2) / s^3, in powers of s^2 up to 0.02944
//   kExp  (2^f - 1 - f ln 2) / f^2, in powers of f from -1/2 to 1/2
inline constexpr double kLog[] = {
    0x1.ec709dc3a03fdp-1, 0x1.2776c50ef9c71p-1, 0x1.a61762a7863ffp-2, 0x1.484b1401c7f94p-2,
    0x1.0c9a6ec3ee6a0p-2, 0x1.c69ba0c733d1cp-3, 0x1.880b4408a2f65p-3, 0x1.82aab217db0bep-3,
};
inline constexpr double kExp[] = {
    0x1.ebfbdff82c58fp-3,  0x1.c6b08d704a0c0p-5,  0x1.3b2ab6fba4e79p-7,  0x1.5d87fe78a6732p-10,
    0x1.430912f86b7d4p-13, 0x1.ffcbfc588a52bp-17, 0x1.62c02242bb0bdp-20, 0x1.b5253d3f8e53cp-24,
    0x1.e4cf10d1896bep-28, 0x1.e8ca97815164ap-32, 0x1.c4a2aaa2b01d9p-36, 0x1.820b11cc725e5p-40,
};

// 2 / ln 2, its first 26 bits and the rest.
inline constexpr double kScaleHigh = 0x1.7154760000000p+1;
inline constexpr double kScaleLow = 0x1.4ae0bf85ddf44p-25;

// ln 2, likewise.
inline constexpr double kLn2High = 0x1.62e42f8000000p-1;
inline constexpr double kLn2Low = 0x1.be8e7bcd5e4f2p-27;

inline constexpr double kRounder = 0x1.8p52;  // added, it leaves a whole number in the low bits
inline constexpr double kSmallest = 0x1p-1022;

// Without the low 27 bits, so that a product of two such numbers is exact.
template <class Lanes>
[[gnu::always_inline]] inline Lanes UpperHalf(Lanes value) {
  using Bits = typename LaneBits<Lanes>::Type;
  return std::bit_cast<Lanes>(std::bit_cast<Bits>(value) & 0xFFFFFFFFF8000000U);
}

// A polynomial of eight and one of twelve coefficients, in parts that do not wait for each
// other.
template <class Lanes>
[[gnu::always_inline]] inline Lanes Cubic(const double* c, Lanes x, Lanes xx) {
  return (c[0] + c[1] * x) + (c[2] + c[3] * x) * xx;
}

template <class Lanes>
[[gnu::always_inline]] inline Lanes LogPolynomial(Lanes x) {
  const Lanes xx = x * x;
  return Cubic(kLog, x, xx) + Cubic(kLog + 4, x, xx) * (xx * xx);
}

template <class Lanes>
[[gnu::always_inline]] inline Lanes ExpPolynomial(Lanes x) {
  const Lanes xx = x * x;
  const Lanes x4 = xx * xx;
  return Cubic(kExp, x, xx) + (Cubic(kExp + 4, x, xx) + Cubic(kExp + 8, x, xx) * x4) * x4;
}

template <class Lanes>
struct TwoParts {
  Lanes high;
  Lanes low;
};

// For normal numbers.
template <class Lanes>
[[gnu::always_inline]] inline TwoParts<Lanes> Log2(Lanes y) {
  using Bits = typename LaneBits<Lanes>::Type;
  constexpr std::uint64_t kRootOfHalf = 0x3FE6A09E667F3BCD;
  constexpr std::uint64_t kBias = std::uint64_t{1023} << 52U;
  const Bits bits = std::bit_cast<Bits>(y);
  const Bits exponent = (bits - kRootOfHalf + kBias) >> 52U;  // k + 1023
  const Lanes k = std::bit_cast<Lanes>(exponent | 0x4330000000000000U) - (0x1p52 + 1023.0);
  const Lanes m = std::bit_cast<Lanes>(bits - (exponent << 52U) + kBias);  // around 1

  // s in two parts: what its upper half leaves of m - 1 - s * (m + 1) is exact.
  const Lanes reciprocal = 1.0 / (m + 1.0);
  const Lanes f = m - 1.0;
  const Lanes sHigh = UpperHalf(f * reciprocal);
  const Lanes mHigh = UpperHalf(m);
  const Lanes rest = ((f - sHigh) - sHigh * mHigh) - sHigh * (m - mHigh);
  const Lanes sLow = rest * reciprocal;

  const Lanes s = sHigh + sLow;
  const Lanes z = s * s;
  const Lanes first = sHigh * kScaleHigh;  // exact
  const Lanes small =
      (sLow * (kScaleHigh + kScaleLow) + sHigh * kScaleLow) + (s * z) * LogPolynomial(z);
  const Lanes sum = k + first;
  const Lanes low = ((k - sum) + first) + small;
  const Lanes high = sum + low;
  return {high, (sum - high) + low};
}

// For -1/2 to 1/2. The linear term is what rounding would spoil, so it goes in two parts.
template <class Lanes>
[[gnu::always_inline]] inline Lanes Exp2(Lanes f) {
  const Lanes fHigh = UpperHalf(f);
  const Lanes first = fHigh * kLn2High;  // exact
  const Lanes rest = (f - fHigh) * kLn2High + f * kLn2Low + (f * f) * ExpPolynomial(f);
  const Lanes sum = 1.0 + first;
  return sum + (((1.0 - sum) + first) + rest);
}

}  // namespace power

PowerExponent MakePowerExponent(double exponent);

// y to that power, from y and its logarithm; loops over many numbers do one after the
// other, since each alone lets more of them overlap.
//   y  0 to 1, or a rounding above it. Below the smallest normal number it counts as 0, and
//      so does a result; not-a-number, and what is nowhere near 1, comes back as it is
//   e  1/20 to 20
template <class Lanes>
[[gnu::always_inline]] inline Lanes PowerFromLog(Lanes y, const power::TwoParts<Lanes>& log,
                                                 const PowerExponent& e) {
  using Bits = typename LaneBits<Lanes>::Type;
  const Lanes logHigh = power::UpperHalf(log.high);
  const Lanes first = logHigh * e.high;  // exact
  const Lanes rest = log.high * e.low + ((log.high - logHigh) + log.low) * e.high;
  const Lanes t = first + rest;
  const Lanes rounded = t + power::kRounder;
  const Lanes f = (first - (rounded - power::kRounder)) + rest;
  const Bits scaled = std::bit_cast<Bits>(power::Exp2(f)) + (std::bit_cast<Bits>(rounded) << 52U);
  const Lanes zero{};
  const Lanes result = t < -1021.0 ? zero : std::bit_cast<Lanes>(scaled);
  const Lanes small = y < power::kSmallest ? zero : result;
  return y < 4.0 ? small : y;
}

template <class Lanes>
[[gnu::always_inline]] inline Lanes Power(Lanes y, const PowerExponent& e) {
  return PowerFromLog(y, power::Log2(y), e);
}

}  // namespace lx
