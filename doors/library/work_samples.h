// SPDX-License-Identifier: BSD-3-Clause
// Between callers' samples, floats of 0 to 1, and the samples of a work picture. Every integer
// comes back as it was.
#pragma once

#include <algorithm>
#include <cmath>
#include <concepts>
#include <cstdint>
#include <limits>

namespace lx {

template <std::integral Sample>
float ToUnit(Sample sample) {
  constexpr double kScale = 1.0 / std::numeric_limits<Sample>::max();
  return static_cast<float>(sample * kScale);
}
inline float ToUnit(float sample) { return std::isfinite(sample) ? sample : 0.0F; }

template <std::integral Sample>
Sample FromUnit(float value) {
  // What is not a number becomes 0.
  const float clamped = value > 0.0F ? std::min(value, 1.0F) : 0.0F;
  constexpr double kFull = std::numeric_limits<Sample>::max();
  return static_cast<Sample>(static_cast<std::int32_t>(clamped * kFull + 0.5));
}
template <std::same_as<float> Sample>
float FromUnit(float value) {
  return value;
}

template <class Work>
Work ToWork(float value) {
  return FromUnit<Work>(value);
}
inline float FromWork(float value) { return value; }
inline float FromWork(std::uint16_t value) { return ToUnit(value); }

}  // namespace lx
