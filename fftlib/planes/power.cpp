// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/power.h"

namespace lx {

PowerExponent MakePowerExponent(double exponent) {
  const double high = power::UpperHalf(exponent);
  return {high, exponent - high};
}

}  // namespace lx
