// SPDX-License-Identifier: BSD-3-Clause
// From doubles to integers, with a defined result for every double.
#pragma once

#include <cstdint>
#include <limits>

namespace lx {

// Truncates toward zero. Not-a-number and whatever lies outside the 32-bit range give
// the smallest 32-bit number, as the conversion instruction of x86 does.
constexpr std::int32_t TruncateToInt32(double value) {
  if (value > -2147483649.0 && value < 2147483648.0) {
    return static_cast<std::int32_t>(value);
  }
  return std::numeric_limits<std::int32_t>::min();
}

// Clamps to 0..1. Not-a-number gives 0, so that no frame ever holds an undefined sample.
constexpr double ClampToUnit(double value) {
  return value > 0.0 ? (value < 1.0 ? value : 1.0) : 0.0;
}

// Clamps to 0..limit and truncates. Not-a-number gives 0.
constexpr std::uint64_t TruncateToUnsigned(double value, double limit) {
  return static_cast<std::uint64_t>(value > 0.0 ? (value < limit ? value : limit) : 0.0);
}

// Narrows to float; what lies outside its range becomes infinite.
constexpr float NarrowToFloat(double value) {
  constexpr double kLargest = std::numeric_limits<float>::max();
  // Half a step above the largest float is where rounding to nearest turns to infinity.
  constexpr double kLimit = kLargest + 0x1p+103;
  if (value >= kLimit) {
    return std::numeric_limits<float>::infinity();
  }
  if (value <= -kLimit) {
    return -std::numeric_limits<float>::infinity();
  }
  return static_cast<float>(value);
}

}  // namespace lx
