// SPDX-License-Identifier: BSD-3-Clause
// Between pixels of four 16-bit channels, each in one 64-bit lane, and samples from 0 to 1: on one
// pixel or on several lanes, with the same bits.
//
// P is an unsigned 64-bit integer or a vector of them, V a double or a vector of as many.
#pragma once

#include <bit>
#include <cstdint>

#include "fftlib/planes/sample_types.h"

namespace lx {

namespace pixel_lanes {

// A number below 2^52 in the low bits of this double is the double plus the number.
inline constexpr double kBig = 0x1p52;
inline constexpr std::uint64_t kBigBits = std::bit_cast<std::uint64_t>(kBig);

}  // namespace pixel_lanes

template <int channel, class V, class P>
[[gnu::always_inline]] inline V SampleToUnit(P pixels) {
  const P sample = (pixels >> (16 * channel)) & 0xFFFFU;
  return (std::bit_cast<V>(sample | pixel_lanes::kBigBits) - pixel_lanes::kBig) *
         SampleScale<std::uint16_t>::toUnit;
}

// Clamped and rounded, in the low 16 bits. Written so that not-a-number becomes 0.
template <class P, class V>
[[gnu::always_inline]] inline P UnitToSample(V value) {
  const V zero{};
  const V one = zero + 1.0;
  const V low = value > 0.0 ? value : zero;
  const V raised = (low < 1.0 ? low : one) * SampleScale<std::uint16_t>::full + 0.5;
  // Rounded down: the sum with 2^52 drops the fraction, to the nearest whole number.
  const V nearest = (raised + pixel_lanes::kBig) - pixel_lanes::kBig;
  const V whole = nearest > raised ? nearest - 1.0 : nearest;
  return std::bit_cast<P>(whole + pixel_lanes::kBig) & 0xFFFFU;
}

}  // namespace lx
