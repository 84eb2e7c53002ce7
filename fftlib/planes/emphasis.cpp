// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/emphasis.h"

#include <algorithm>

#include "baselib/utils/convert.h"
#include "fftlib/planes/emphasis_curve.h"

namespace lx {
namespace {

// Intended: which constants are floats differs from form to form.
constexpr double kThreshold = 0.001;
constexpr double kFloatThreshold = 0.0010000000474974513;
constexpr double kSlope = 0.03;
constexpr double kFloatSlope = 0.029999999329447746;

// A signed comparison: every emphasis up to 1 is off. One that is not a number is on.
bool IsOn(double g, double threshold) { return !(g - 1.0 < threshold); }

// Above 50 the hyperbola cannot get steeper fast enough, so a power takes over.
bool HasPower(double g) { return g > 50.0; }

double Exponent(double g, double slope) { return (std::min(g, 500.0) - 50.0) * slope + 1.0; }

EmphasisCurve MakeCurve(double g, double threshold, double slope) {
  if (!IsOn(g, threshold)) {
    return {};
  }
  EmphasisCurve curve = MakeHyperbola(g);
  curve.hasPower = HasPower(g);
  if (curve.hasPower) {
    const double exponent = Exponent(g, slope);
    curve.apply = MakePowerExponent(exponent);
    curve.undo = MakePowerExponent(1.0 / exponent);
  }
  return curve;
}

}  // namespace

EmphasisCurve MakeEmphasisCurve(double g) { return MakeCurve(g, kThreshold, kSlope); }

double ApplyEmphasisD(double x, double g) {
  const EmphasisCurve curve = MakeEmphasisCurve(g);
  return curve.on ? ApplyCurve(x, curve) : x;
}

double UndoEmphasisD(double y, double g) {
  const EmphasisCurve curve = MakeEmphasisCurve(g);
  return curve.on ? UndoCurve(y, curve) : y;
}

double ApplyEmphasis(float x, float g) {
  EmphasisCurve curve = MakeCurve(g, kFloatThreshold, kFloatSlope);
  if (!curve.on) {
    return x;
  }
  const bool hasPower = curve.hasPower;
  curve.hasPower = false;
  const double y = ApplyCurve(static_cast<double>(x), curve);
  // Intended: rounded to a float before the power, on this way alone.
  return hasPower ? Power(static_cast<double>(NarrowToFloat(y)), curve.apply) : y;
}

double UndoEmphasis(float y, float g) {
  const EmphasisCurve curve = MakeCurve(g, kThreshold, kFloatSlope);
  return curve.on ? UndoCurve(static_cast<double>(y), curve) : y;
}

}  // namespace lx
