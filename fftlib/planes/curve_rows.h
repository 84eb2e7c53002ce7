// SPDX-License-Identifier: BSD-3-Clause
// The emphasis curve over rows of samples, on vectors of doubles. For the sources that are
// compiled for one instruction set each.
//
// Lanes is a vector type of the compiler's, with its LaneBits.
#pragma once

#include <cstdint>
#include <cstring>

#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/power.h"
#include "fftlib/planes/row_operations.h"

namespace lx {

template <class Lanes>
class CurveRows {
 public:
  // What RowOperations has under these names.
  static void Apply(const EmphasisCurve& curve, std::int32_t width, double* row) {
    const EmphasisCurve own = curve;  // which no store into the row can change
    const std::int32_t end = width - width % kStep;
    for (std::int32_t start = 0; start < end; start += kPiece) {
      const std::int32_t count = PieceAt(start, end);
      double* piece = row + start;
      for (std::int32_t x = 0; x < count; x += kStep) {
        Store(CurveHyperbola(1.0 - ClampToCurve(Load(piece + x)), own), piece + x);
      }
      if (own.hasPower) {
        RaisePiece(own.apply, count, piece);
      }
    }
    PlainRowOperations().applyCurve(curve, width - end, row + end);
  }

  static void Undo(const EmphasisCurve& curve, const double* plane, double scale,
                   std::int32_t width, double* row) {
    const EmphasisCurve own = curve;
    const std::int32_t end = width - width % kStep;
    for (std::int32_t start = 0; start < end; start += kPiece) {
      const std::int32_t count = PieceAt(start, end);
      double* piece = row + start;
      for (std::int32_t x = 0; x < count; x += kStep) {
        Store(ClampToCurve(scale * Load(plane + start + x)), piece + x);
      }
      if (own.hasPower) {
        RaisePiece(own.undo, count, piece);
      }
      for (std::int32_t x = 0; x < count; x += kStep) {
        Store(1.0 - CurveHyperbola(Load(piece + x), own), piece + x);
      }
    }
    PlainRowOperations().undoCurve(curve, plane + end, scale, width - end, row + end);
  }

 private:
  static constexpr std::int32_t kStep = sizeof(Lanes) / sizeof(double);

  // A piece of a row at a time goes through each step of the curve: the whole chain of
  // operations on one sample is longer than what a processor overlaps.
  static constexpr std::int32_t kPiece = 128;

  static std::int32_t PieceAt(std::int32_t start, std::int32_t end) {
    return end - start < kPiece ? end - start : kPiece;
  }

  static Lanes Load(const double* from) {
    Lanes lanes;
    std::memcpy(&lanes, from, sizeof lanes);
    return lanes;
  }

  static void Store(Lanes lanes, double* to) { std::memcpy(to, &lanes, sizeof lanes); }

  static void RaisePiece(const PowerExponent& exponent, std::int32_t count, double* piece) {
    const PowerExponent own = exponent;
    alignas(Lanes) double high[kPiece];
    alignas(Lanes) double low[kPiece];
    for (std::int32_t x = 0; x < count; x += kStep) {
      const power::TwoParts<Lanes> log = power::Log2(Load(piece + x));
      Store(log.high, high + x);
      Store(log.low, low + x);
    }
    for (std::int32_t x = 0; x < count; x += kStep) {
      const power::TwoParts<Lanes> log{Load(high + x), Load(low + x)};
      Store(PowerFromLog(Load(piece + x), log, own), piece + x);
    }
  }
};

}  // namespace lx
