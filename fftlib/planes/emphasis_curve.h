// SPDX-License-Identifier: BSD-3-Clause
// The emphasis curve of one g, made ready for rows of samples: on one double or on several
// lanes, with the same bits.
#pragma once

#include "fftlib/planes/power.h"

namespace lx {

struct EmphasisCurve {
  bool on;        // without it the other members mean nothing, and samples go on as they are
  bool hasPower;  // above 50
  double a;       // 1 / g
  double b;       // g - a
  PowerExponent apply;
  PowerExponent undo;
};

// The curve's hyperbola alone: the whole curve of a g above 1 and up to 50.
inline EmphasisCurve MakeHyperbola(double g) {
  EmphasisCurve curve{};
  curve.on = true;
  curve.a = 1.0 / g;
  curve.b = g - curve.a;
  return curve;
}

// For the double forms of the curve. A g that is not a number is on, and gives
// not-a-number.
EmphasisCurve MakeEmphasisCurve(double g);

// Written so that not-a-number stays what it is.
template <class Lanes>
[[gnu::always_inline]] inline Lanes ClampToCurve(Lanes v) {
  const Lanes zero{};
  const Lanes one = zero + 1.0;
  const Lanes low = v < 0.0 ? zero : v;
  return low > 1.0 ? one : low;
}

template <class Lanes>
[[gnu::always_inline]] inline Lanes CurveHyperbola(Lanes z, const EmphasisCurve& curve) {
  return (1.0 / (z * curve.b + curve.a) - curve.a) / curve.b;
}

// For a curve that is on.
template <class Lanes>
[[gnu::always_inline]] inline Lanes ApplyCurve(Lanes x, const EmphasisCurve& curve) {
  const Lanes y = CurveHyperbola(1.0 - ClampToCurve(x), curve);
  return curve.hasPower ? Power(y, curve.apply) : y;
}

template <class Lanes>
[[gnu::always_inline]] inline Lanes UndoCurve(Lanes y, const EmphasisCurve& curve) {
  const Lanes clamped = ClampToCurve(y);
  const Lanes root = curve.hasPower ? Power(clamped, curve.undo) : clamped;
  return 1.0 - CurveHyperbola(root, curve);
}

}  // namespace lx
