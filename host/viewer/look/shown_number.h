// SPDX-License-Identifier: BSD-3-Clause
// ShownNumber: a number of the page as a panel shows it, and as a slider types it.
#pragma once

#include <string>

#include "host/looks/parameter.h"

namespace glimmerhost {

// In what a panel shows radii: 40px, 4% or 0.04.
enum class RadiusUnit { kPixels, kPercent, kPart };

class ShownNumber {
 public:
  //   width  of the picture, in pixels
  ShownNumber(const Parameter& parameter, RadiusUnit unit, int width);

  // Six digits at the most, with the unit.
  std::string Short(double value) const;

  // Rounded to what a slider's finest step can tell apart, with the unit: what a person might have
  // typed, and not the seventeen digits of where the slider stands.
  std::string Rounded(double value) const;

  // The number of that text in the store's own measure.
  double RoundedValue(double value) const;

 private:
  double InUnit(double value) const { return value * factor_; }
  double Nearest(double value) const;

  double factor_ = 1.0;  // what is shown for a 1 in the store
  const char* suffix_ = "";
  double perWhole_ = 1.0;  // steps of rounding in a 1 that is shown, a power of ten
};

}  // namespace glimmerhost
