// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/look/shown_number.h"

#include <algorithm>
#include <cmath>
#include <sstream>

#include "host/support/text.h"
#include "host/viewer/look/slider_scale.h"

namespace glimmerhost {

ShownNumber::ShownNumber(const Parameter& parameter, RadiusUnit unit, int width) {
  if (parameter.measure == Measure::kRadius && unit != RadiusUnit::kPart) {
    factor_ = unit == RadiusUnit::kPixels ? width / 2.0 : 100.0;
    suffix_ = unit == RadiusUnit::kPixels ? "px" : "%";
  }
  // A finest step that were rounded away would stop a slider that is moved by keys; one that is
  // half as fine again does no harm.
  const double finest = SliderScale(parameter).FinestChange() * factor_;
  const double digits = parameter.kind == Kind::kWhole ? 0.0 : std::ceil(-std::log10(finest) - 0.2);
  perWhole_ = std::pow(10.0, std::max(0.0, digits));
}

std::string ShownNumber::Short(double value) const {
  std::ostringstream out;
  out << InUnit(value) << suffix_;
  return out.str();
}

double ShownNumber::Nearest(double value) const {
  return std::round(InUnit(value) * perWhole_) / perWhole_;
}

std::string ShownNumber::Rounded(double value) const { return Shortest(Nearest(value)) + suffix_; }

double ShownNumber::RoundedValue(double value) const { return Nearest(value) / factor_; }

}  // namespace glimmerhost
