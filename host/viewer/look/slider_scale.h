// SPDX-License-Identifier: BSD-3-Clause
// SliderScale: how the travel of a slider is spread over a parameter's range, so that what is used
// most has the most room. It covers what the page offers; what may only be typed lies at its ends.
//
//   a radius of 0 to 1             a rotation                 a point, -1 to 2
//   travel  value                  travel  value              travel  value
//   0.25    0.0064                 0.25    -138               0.1      0
//   0.5     0.0385                 0.5        0               0.5      0.5
//   0.75    0.199                  0.75     138               0.9      1
//
// Any other range has the same room everywhere.
#pragma once

#include "host/looks/parameter.h"

namespace glimmerhost {

class SliderScale {
 public:
  //   parameter  a number
  explicit SliderScale(const Parameter& parameter);

  //   travel  0 to 1
  double ValueAt(double travel) const;

  // The travel for a value, 0 or 1 for one outside.
  double TravelOf(double value) const;

  // Between two whole numbers there is nothing to show: the travel from one to the next.
  // Otherwise a hundredth.
  double Step() const { return step_; }
  double FineStep() const { return fineStep_; }

  // The smallest change that a fine step makes, anywhere.
  double FinestChange() const;

 private:
  enum class Spread { kEven, kFromLowest, kFromMiddle, kPlace };

  Spread spread_;
  double lowest_;
  double highest_;
  double step_;
  double fineStep_;
};

}  // namespace glimmerhost
