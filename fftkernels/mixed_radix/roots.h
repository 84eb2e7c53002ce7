// SPDX-License-Identifier: BSD-3-Clause
// Roots of unity, and other points of the unit circle, with the same bits on every system.
#pragma once

#include <cstdint>

namespace lx {

struct Root {
  double cosine;
  double sine;
};

// exp(2 pi i k / n), each part the nearest double. The C library's functions differ between systems
// in the last bit.
//   k  0 to n - 1
//   n  1 to 2^24
Root RootOfUnity(std::int64_t k, std::int64_t n);

// exp(i radians), each part the nearest double, or one that is off by 1e-29 where it is almost 0.
// Up to a million either way; beyond that, and for what is not a number, as the C library has it.
Root RootOfAngle(double radians);

}  // namespace lx
