// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/slider_scale.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>

namespace glimmerhost {
namespace {

// Half of the travel is for a 26th of the range, a quarter for a 156th: on pictures of 1920 pixels
// radii to 37 and to 6 pixels.
constexpr double kBase = 625.0;

double Grown(double travel) { return (std::pow(kBase, travel) - 1.0) / (kBase - 1.0); }
double Shrunk(double part) { return std::log1p(part * (kBase - 1.0)) / std::log(kBase); }

// A place on the picture has four fifths of the travel, what lies beside it the rest.
constexpr double kBeside = 0.1;

// From one scale with as many corners to the other.
double Between(const std::array<double, 4>& from, const std::array<double, 4>& to, double at) {
  const std::size_t part = at < from[1] ? 0 : at < from[2] ? 1 : 2;
  return to[part] + (at - from[part]) / (from[part + 1] - from[part]) * (to[part + 1] - to[part]);
}

constexpr std::array<double, 4> kPlaceTravel = {0.0, kBeside, 1.0 - kBeside, 1.0};

}  // namespace

SliderScale::SliderScale(const Parameter& parameter)
    : spread_(Spread::kEven),
      lowest_(parameter.lowest),
      highest_(parameter.highest),
      step_(0.01),
      fineStep_(0.001) {
  const bool isPlace = parameter.measure == Measure::kX || parameter.measure == Measure::kY;
  if (parameter.kind == Kind::kWhole) {
    step_ = fineStep_ = 1.0 / std::max(1.0, highest_ - lowest_);
  } else if (isPlace && lowest_ < 0.0 && highest_ > 1.0) {
    spread_ = Spread::kPlace;
  } else if (parameter.measure == Measure::kRadius) {
    spread_ = Spread::kFromLowest;
  } else if (parameter.measure == Measure::kPlain && lowest_ == -highest_) {
    spread_ = Spread::kFromMiddle;
  }
}

double SliderScale::ValueAt(double travel) const {
  const double t = std::clamp(travel, 0.0, 1.0);
  switch (spread_) {
    case Spread::kFromLowest:
      return lowest_ + (highest_ - lowest_) * Grown(t);
    case Spread::kFromMiddle:
      return t < 0.5 ? -highest_ * Grown(1.0 - 2.0 * t) : highest_ * Grown(2.0 * t - 1.0);
    case Spread::kPlace:
      return Between(kPlaceTravel, {lowest_, 0.0, 1.0, highest_}, t);
    case Spread::kEven:
      break;
  }
  return lowest_ + (highest_ - lowest_) * t;
}

double SliderScale::TravelOf(double value) const {
  const double v = std::clamp(value, lowest_, highest_);
  switch (spread_) {
    case Spread::kFromLowest:
      return Shrunk((v - lowest_) / (highest_ - lowest_));
    case Spread::kFromMiddle:
      return v < 0.0 ? 0.5 - Shrunk(-v / highest_) / 2.0 : 0.5 + Shrunk(v / highest_) / 2.0;
    case Spread::kPlace:
      return Between({lowest_, 0.0, 1.0, highest_}, kPlaceTravel, v);
    case Spread::kEven:
      break;
  }
  return highest_ > lowest_ ? (v - lowest_) / (highest_ - lowest_) : 0.0;
}

double SliderScale::FinestChange() const {
  const double from = spread_ == Spread::kFromMiddle || spread_ == Spread::kPlace ? 0.5 : 0.0;
  return ValueAt(from + fineStep_) - ValueAt(from);
}

}  // namespace glimmerhost
