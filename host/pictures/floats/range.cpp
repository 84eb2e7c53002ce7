// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/floats/range.h"

#include <charconv>
#include <cmath>
#include <string_view>
#include <system_error>

#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// The largest half float, so that what goes back finds a place in an EXR file.
constexpr float kLargestMax = 65504.0F;

// How much steeper the curve begins than it goes on: at MAX 16 a step of 16 bits is 1.7e-6 at
// black, and nowhere more than 1.1e-4 of a value above 1.
constexpr double kSteepness = 64.0;

[[noreturn]] void Refuse(const std::string& text) {
  throw MustBe("--range", "clip, scale:MAX or log:MAX, with MAX above 0 and up to 65504", text);
}

}  // namespace

RangeMapping RangeMapping::Parse(const std::string& text) {
  RangeMapping range;
  std::string_view rest = text;
  if (rest == "clip") {
    return range;
  }
  if (rest.starts_with("scale:")) {
    range.curve_ = Curve::kScale;
  } else if (rest.starts_with("log:")) {
    range.curve_ = Curve::kLog;
  } else {
    Refuse(text);
  }
  rest.remove_prefix(rest.find(':') + 1);
  const auto [end, error] = std::from_chars(rest.data(), rest.data() + rest.size(), range.max_);
  if (error != std::errc() || end != rest.data() + rest.size() || !(range.max_ > 0.0F) ||
      range.max_ > kLargestMax) {
    Refuse(text);
  }
  return range;
}

std::string RangeMapping::Text() const {
  switch (curve_) {
    case Curve::kScale:
      return "scale:" + Shortest(double{max_});
    case Curve::kLog:
      return "log:" + Shortest(double{max_});
    case Curve::kSpan:  // nobody types it
    case Curve::kPlain:
      break;
  }
  return "clip";
}

RangeMapping RangeMapping::Span(float lowest, float highest) {
  RangeMapping range;
  range.curve_ = Curve::kSpan;
  range.min_ = lowest;
  range.max_ = highest;
  return range;
}

float RangeMapping::ToUnit(float number) const {
  const float value = std::isnan(number) ? 0.0F : number;
  if (!(value > min_)) {
    return 0.0F;
  }
  if (value >= max_) {
    return 1.0F;
  }
  switch (curve_) {
    case Curve::kScale:
      return value / max_;
    case Curve::kSpan:
      return static_cast<float>((double{value} - min_) / (double{max_} - min_));
    case Curve::kLog:
      return static_cast<float>(std::log1p(kSteepness * double{value}) /
                                std::log1p(kSteepness * double{max_}));
    default:
      return value;
  }
}

float RangeMapping::FromUnit(float unit) const {
  if (unit >= 1.0F) {
    return max_;
  }
  switch (curve_) {
    case Curve::kScale:
      return unit * max_;
    case Curve::kSpan:
      return static_cast<float>(double{min_} + double{unit} * (double{max_} - min_));
    case Curve::kLog:
      return static_cast<float>(std::expm1(double{unit} * std::log1p(kSteepness * double{max_})) /
                                kSteepness);
    default:
      return unit;
  }
}

}  // namespace glimmerhost
