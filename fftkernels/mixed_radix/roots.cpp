// SPDX-License-Identifier: BSD-3-Clause
#include "fftkernels/mixed_radix/roots.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <iterator>
#include <utility>

namespace lx {
namespace {

// A number in two doubles, good for some 104 bits.
struct Pair {
  double high;
  double low;
};

Pair QuickSum(double a, double b) {
  const double sum = a + b;
  return {sum, b - (sum - a)};
}

Pair Sum(double a, double b) {
  const double sum = a + b;
  const double part = sum - a;
  return {sum, (a - (sum - part)) + (b - part)};
}

// T. J. Dekker, "A floating-point technique for extending the available precision", 1971.
Pair Product(double a, double b) {
  constexpr double kSplit = 134217729.0;  // 2^27 + 1
  const double aScaled = kSplit * a;
  const double aHigh = aScaled - (aScaled - a);
  const double aLow = a - aHigh;
  const double bScaled = kSplit * b;
  const double bHigh = bScaled - (bScaled - b);
  const double bLow = b - bHigh;
  const double product = a * b;
  return {product, ((aHigh * bHigh - product) + aHigh * bLow + aLow * bHigh) + aLow * bLow};
}

Pair operator+(Pair a, Pair b) {
  const Pair sum = Sum(a.high, b.high);
  return QuickSum(sum.high, sum.low + (a.low + b.low));
}

Pair operator*(Pair a, Pair b) {
  const Pair product = Product(a.high, b.high);
  return QuickSum(product.high, product.low + (a.high * b.low + a.low * b.high));
}

// The nearest pair to a quotient of whole numbers.
Pair Quotient(double a, double b) {
  const double quotient = a / b;
  const Pair back = Product(quotient, b);
  return QuickSum(quotient, ((a - back.high) - back.low) / b);
}

// (-1)^j (2 pi)^n / n!, for n = 2 j and n = 2 j + 1: the Taylor series of the cosine and the sine
// of 2 pi x, in powers of x^2. By sixty digits of pi; the first terms left out are below 2^-110 for
// an eighth of the circle.
constexpr Pair kCosine[] = {
    {0x1.0000000000000p+0, 0.0},
    {-0x1.3bd3cc9be45dep+4, -0x1.692b71366cc04p-50},
    {0x1.03c1f081b5ac4p+6, -0x1.32b33f87fc145p-48},
    {-0x1.55d3c7e3cbffap+6, 0x1.d582920937625p-53},
    {0x1.e1f506891babbp+5, -0x1.7362f495c096dp-52},
    {-0x1.a6d1f2a204a8cp+4, 0x1.5961232276df6p-50},
    {0x1.f9d38a3763cc3p+2, -0x1.c8a14c8bd6bc5p-52},
    {-0x1.b6e24f44b128fp+0, -0x1.6de1e0a0c23b9p-55},
    {0x1.20c62c2f2d7f5p-2, -0x1.5a3cd1a11c7a2p-56},
    {-0x1.2a0c591af8314p-5, -0x1.215803afbd5f8p-59},
    {0x1.ef6e308d6d1c4p-9, -0x1.c5f7779fbdd48p-63},
    {-0x1.52ae4120fde27p-12, 0x1.76dd247cd9002p-66},
    {0x1.838d8f4321800p-16, -0x1.453680e7f5659p-72},
    {-0x1.789d662bb5482p-20, -0x1.01d70ae199b04p-78},
};
constexpr Pair kSine[] = {
    {0x1.921fb54442d18p+2, 0x1.1a62633145c07p-52},
    {-0x1.4abbce625be53p+5, 0x1.05511c68476a8p-49},
    {0x1.466bc6775aae2p+6, -0x1.6dc0cbddb0fc3p-49},
    {-0x1.32d2cce62bd86p+6, 0x1.066847a026e69p-48},
    {0x1.50783487ee782p+5, -0x1.1be14e6e8854ap-49},
    {-0x1.e3074fde8871fp+3, -0x1.88ef203b0a336p-51},
    {0x1.e8f434d018d63p+1, 0x1.94682b2571263p-54},
    {-0x1.6fadb9f155744p-1, 0x1.bab97c50b4cd0p-55},
    {0x1.aaec32af93359p-4, 0x1.4fe55050e576ap-59},
    {-0x1.8a404211f9547p-7, -0x1.6d424c0620248p-65},
    {0x1.2877020d52cf0p-10, -0x1.c9db31d99b9a3p-64},
    {-0x1.7215f879e1ac9p-14, 0x1.a2cc59fc2e3e8p-68},
    {0x1.859c594ba4573p-18, 0x1.46446588874ecp-73},
    {-0x1.5e91aac4928dbp-22, 0x1.36e8311afce96p-76},
};

// Turns of a radian, 1 / (2 pi).
constexpr Pair kPerRadian{0x1.45f306dc9c883p-3, -0x1.6b01ec5417056p-57};

template <std::size_t count>
Pair Series(const Pair (&terms)[count], Pair square) {
  Pair sum = terms[count - 1];
  for (std::size_t i = count - 1; i-- > 0;) {
    sum = sum * square + terms[i];
  }
  return sum;
}

// Of an angle up to an eighth of the circle either way, in turns.
Root Eighth(Pair turn) {
  const Pair square = turn * turn;
  return {Series(kCosine, square).high, (turn * Series(kSine, square)).high};
}

// Further by quarters of a turn, 0 to 3.
Root Turned(Root root, std::int64_t quarters) {
  switch (quarters) {
    case 0:
      return root;
    case 1:
      return {-root.sine, root.cosine};
    case 2:
      return {-root.cosine, -root.sine};
    default:
      return {root.sine, -root.cosine};
  }
}

}  // namespace

// By symmetry from the first eighth, so that equal numbers come out equal.
Root RootOfUnity(std::int64_t k, std::int64_t n) {
  const std::int64_t quadrant = 4 * k / n;
  const std::int64_t rest = 4 * k - quadrant * n;  // of a quarter, in units of n
  const bool isPast = 2 * rest > n;
  Root root =
      Eighth(Quotient(static_cast<double>(isPast ? n - rest : rest), static_cast<double>(4 * n)));
  if (isPast) {
    std::swap(root.cosine, root.sine);
  }
  return Turned(root, quadrant);
}

// The nearest quarter of a turn is taken away first: what is left lies in the two eighths about 0.
Root RootOfAngle(double radians) {
  constexpr double kMost = 1e6;
  if (!(std::abs(radians) <= kMost)) {
    return {std::cos(radians), std::sin(radians)};
  }
  const Pair turn = Pair{radians, 0.0} * kPerRadian;
  const double quarters = std::floor(4.0 * turn.high + 0.5);
  const Root root = Eighth(turn + Pair{-0.25 * quarters, 0.0});
  const auto quadrant = static_cast<std::int64_t>(quarters - 4.0 * std::floor(0.25 * quarters));
  return Turned(root, quadrant);
}

}  // namespace lx
