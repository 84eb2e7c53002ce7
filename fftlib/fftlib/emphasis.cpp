#include "fftlib/fftlib/emphasis.h"

#include <algorithm>
#include <cmath>

namespace lx {
namespace {

// Above 50 the hyperbola cannot get steeper fast enough, so a power takes over.
double PowerExponent(double g) { return (std::min(g, 500.0) - 50.0) * 0.03 + 1.0; }

// Written so that a value that is not a number stays what it is.
double Clamp(double v) { return v < 0.0 ? 0.0 : v > 1.0 ? 1.0 : v; }

}  // namespace

// A signed comparison: every emphasis up to 1 is off. One that is not a number is on.
bool HasEmphasis(double g) { return !(g - 1.0 < 0.001); }

double ApplyEmphasisD(double x, double g) {
  if (!HasEmphasis(g)) {
    return x;
  }
  const double a = 1.0 / g;
  const double b = g - a;
  const double c = 1.0 - Clamp(x);
  const double y = (1.0 / (c * b + a) - a) / b;
  return g > 50.0 ? std::pow(y, PowerExponent(g)) : y;
}

double UndoEmphasisD(double y, double g) {
  if (!HasEmphasis(g)) {
    return y;
  }
  y = Clamp(y);
  if (g > 50.0) {
    y = std::pow(y, 1.0 / PowerExponent(g));
  }
  const double a = 1.0 / g;
  const double b = g - a;
  return 1.0 - (1.0 / (y * b + a) - a) / b;
}

}  // namespace lx
