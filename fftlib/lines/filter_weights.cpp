// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/lines/filter_weights.h"

#include <algorithm>
#include <cmath>
#include <cstdint>

#include "baselib/utils/convert.h"

namespace lx {
namespace {

constexpr std::int32_t kMostWeights = 8192;

constexpr float kPi = 3.1415927F;
constexpr float kHalfPi = 1.5707964F;
constexpr float kQuarterPi = 0.7853982F;
constexpr float kSixth = 0.16666667F;

enum FilterType : std::int32_t {
  kBox = 1,
  kTriangle = 2,
  kGaussian = 3,
  kCubic = 4,
  kCubicSpline = 5,
  kSincCosine = 6,
  kSincSinc = 9,
};

bool IsFilterType(std::int32_t type) {
  // 7 and 8 have no formula.
  return type >= kBox && type <= kSincSinc && type != 7 && type != 8;
}

double Triangle(double t) { return std::max(1.0 - t, 0.0); }

double Gaussian(double i, double radius) {
  const double sigma = radius / 3.0;
  return std::exp(-(i * i) / (2.0 * sigma * sigma));
}

double Cubic(double t, double a) {
  if (t < 1.0) {
    return ((a + 2.0) * t - (a + 3.0)) * t * t + 1.0;
  }
  return ((t - 5.0) * a * t + 8.0 * a) * t - 4.0 * a;
}

double CubicSpline(double t) {
  if (t < 1.0) {
    return ((3.0 * t - 6.0) * t * t + 4.0) * kSixth;
  }
  return (((6.0 - t) * t - 12.0) * t + 8.0) * kSixth;
}

// sin(t factor) / (t factor), 1 at 0.
double Sinc(double t, float factor) {
  const double angle = t * static_cast<double>(factor);
  return angle == 0.0 ? 1.0 : std::sin(angle) / angle;
}

double CosineWindow(double t) {
  return (std::cos(t * static_cast<double>(kQuarterPi)) + 1.0) * 0.5;
}

// Beyond twice the radius all but the Gaussian are 0.
double FilterValue(std::int32_t type, std::int32_t i, double radius, double a) {
  const double t = i / radius;
  switch (type) {
    case kBox:
      return i < radius ? 1.0 : 0.0;
    case kTriangle:
      return Triangle(t);
    case kGaussian:
      return Gaussian(i, radius);
    default:
      break;
  }
  if (!(t < 2.0)) {
    return 0.0;
  }
  switch (type) {
    case kCubic:
      return Cubic(t, a);
    case kCubicSpline:
      return CubicSpline(t);
    case kSincCosine:
      return Sinc(t, kPi) * CosineWindow(t);
    default:
      return Sinc(t, kPi) * Sinc(t, kHalfPi);
  }
}

// The radius that weights of that type are made for.
double RaiseRadius(std::int32_t type, float radius) {
  // Written so that a radius that is not a number stays what it is, and gives no length.
  const float least = type == kBox ? 1.0F : 0.01F;
  return static_cast<double>(radius < least ? least : radius);
}

}  // namespace

Floats AllocateFloats(std::int32_t count) {
  const std::uint64_t bytes = static_cast<std::uint64_t>(std::max(count, 0)) * sizeof(float);
  return Floats(bytes == 0 || bytes > 0xFFFFFFFFU
                    ? nullptr
                    : static_cast<float*>(lx_malloc(static_cast<std::uint32_t>(bytes))));
}

std::int32_t FilterWeightCount(std::int32_t type, float radius) {
  if (!IsFilterType(type)) {
    return 0;
  }
  const double r = RaiseRadius(type, radius);
  const bool endsAtOnce = type == kBox || type == kTriangle;
  const std::int64_t whole = TruncateToInt32(endsAtOnce ? r : std::ceil(r));
  const std::int64_t length = endsAtOnce ? whole + 1 : 2 * whole + 1;
  return length < 1 || length > kMostWeights ? 0 : static_cast<std::int32_t>(length);
}

void FillFilterWeights(std::int32_t type, float radius, float parameter, std::int32_t length,
                       float* weights) {
  const double r = RaiseRadius(type, radius);
  const double a = parameter == 0.0F ? -0.75 : static_cast<double>(parameter);
  for (std::int32_t i = 0; i < length; ++i) {
    weights[i] = NarrowToFloat(FilterValue(type, i, r, a));
  }
}

}  // namespace lx
