// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/float_rows.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "baselib/utils/convert.h"
#include "fftlib/core/run.h"
#include "fftlib/planes/colour_transform.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

// A piece at a time, so that what lies above 1 stays at hand.
constexpr std::int32_t kPiece = 128;

// The way back from planes, exact to double precision: the constants for integers are inverse to a
// millionth alone, which integers do not show.
struct ColourRow {
  double y;
  double cr;
  double cb;
};
struct ColourInverse {
  ColourRow r;
  ColourRow g;
  ColourRow b;
};
constexpr ColourInverse InvertColours() {
  // Cofactors over the determinant.
  const double crCb = kCrG * kCbB - kCrB * kCbG;
  const double cbCr = kCrB * kCbR - kCrR * kCbB;
  const double rest = kCrR * kCbG - kCrG * kCbR;
  const double d = kLumaR * crCb + kLumaG * cbCr + kLumaB * rest;
  return {{crCb / d, (kLumaB * kCbG - kLumaG * kCbB) / d, (kLumaG * kCrB - kLumaB * kCrG) / d},
          {cbCr / d, (kLumaR * kCbB - kLumaB * kCbR) / d, (kLumaB * kCrR - kLumaR * kCrB) / d},
          {rest / d, (kLumaG * kCbR - kLumaR * kCbG) / d, (kLumaR * kCrG - kLumaG * kCrR) / d}};
}
constexpr ColourInverse kInverse = InvertColours();

float Mix(const ColourRow& row, double y, double cr, double cb) {
  return NarrowToFloat(row.y * y + row.cr * cr + row.cb * cb);
}

double Finite(float sample) { return std::isfinite(sample) ? static_cast<double>(sample) : 0.0; }

struct Weights {
  double r;
  double g;
  double b;
};

Weights WeightsOf(std::uint32_t channelBit) {
  switch (channelBit) {
    case kBitLuma:
      return {kLumaR, kLumaG, kLumaB};
    case kBitCr:
      return {kCrR, kCrG, kCrB};
    default:
      return {kCbR, kCbG, kCbB};
  }
}

// The curve's slope at 1: of its hyperbola 1 / a^2, and of the power on top of that its exponent.
double SlopeAtOne(const EmphasisCurve& curve) {
  const double exponent = curve.hasPower ? curve.apply.high + curve.apply.low : 1.0;
  return exponent / (curve.a * curve.a);
}

// Puts what a value is above 1, times a factor, on top of what a function makes of the rest.
template <class Function>
void OnTop(double factor, std::int32_t count, double* values, Function function) {
  for (std::int32_t start = 0; start < count; start += kPiece) {
    const std::int32_t width = std::min(kPiece, count - start);
    double* piece = values + start;
    double above[kPiece];
    for (std::int32_t x = 0; x < width; ++x) {
      above[x] = piece[x] > 1.0 ? (piece[x] - 1.0) * factor : 0.0;
    }
    function(width, piece);
    for (std::int32_t x = 0; x < width; ++x) {
      piece[x] += above[x];
    }
  }
}

}  // namespace

void FillFromFloatPicture(const ImageRec& source, std::uint32_t channelBit, RowPiece piece,
                          double* row) {
  const float* pixels =
      SampleRow<float>(source, piece.y) + std::ptrdiff_t{piece.x} * source.channels;
  const bool isSingle = source.channels == 1;
  if (isSingle || channelBit == kBitAlpha) {
    pixels += isSingle ? 0 : 3;
    for (std::int32_t x = 0; x < piece.width; ++x, pixels += source.channels) {
      row[x] = Finite(*pixels);
    }
    return;
  }
  const Weights weights = WeightsOf(channelBit);
  for (std::int32_t x = 0; x < piece.width; ++x, pixels += source.channels) {
    row[x] = weights.r * Finite(pixels[0]) + weights.g * Finite(pixels[1]) +
             weights.b * Finite(pixels[2]);
  }
}

void StoreToFloatPicture(const PlaneRow& planes, RowPiece piece, ImageRec* dest) {
  float* pixels = SampleRow<float>(dest, piece.y) + std::ptrdiff_t{piece.x} * dest->channels;
  if (dest->channels == 1) {
    std::transform(planes.luma, planes.luma + piece.width, pixels, NarrowToFloat);
    return;
  }
  for (std::int32_t x = 0; x < piece.width; ++x, pixels += dest->channels) {
    const double y = planes.luma[x];
    const double cr = planes.cr[x];
    const double cb = planes.cb[x];
    // Nothing is clamped: floats may lie above 1 and below 0.
    pixels[0] = Mix(kInverse.r, y, cr, cb);
    pixels[1] = Mix(kInverse.g, y, cr, cb);
    pixels[2] = Mix(kInverse.b, y, cr, cb);
    if (planes.alpha != nullptr) {
      pixels[3] = NarrowToFloat(planes.alpha[x]);
    }
  }
}

void ApplyOpenCurve(const EmphasisCurve& curve, std::int32_t count, double* values) {
  OnTop(SlopeAtOne(curve), count, values, [&](std::int32_t width, double* piece) {
    GetRowOperations().applyCurve(curve, width, piece);
  });
}

void UndoOpenCurve(const EmphasisCurve& curve, std::int32_t count, double* values) {
  OnTop(1.0 / SlopeAtOne(curve), count, values, [&](std::int32_t width, double* piece) {
    GetRowOperations().undoCurve(curve, piece, 1.0, width, piece);
  });
}

}  // namespace lx
