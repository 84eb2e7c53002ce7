// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/row_operations.h"

#include <atomic>
#include <cstdint>
#include <initializer_list>

#include "baselib/utils/convert.h"
#include "fftlib/planes/colour_transform.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

constexpr double kScale = SampleScale<std::uint16_t>::toUnit;
constexpr double kFull = SampleScale<std::uint16_t>::full;

void FillLuma(const std::uint16_t* pixels, std::int32_t width, double* row) {
  for (std::int32_t x = 0; x < width; ++x, pixels += 4) {
    row[x] = kLumaB * (pixels[2] * kScale) + kLumaG * (pixels[1] * kScale) +
             kLumaR * (pixels[0] * kScale);
  }
}

void FillCr(const std::uint16_t* pixels, std::int32_t width, double* row) {
  for (std::int32_t x = 0; x < width; ++x, pixels += 4) {
    row[x] = kCrR * (pixels[0] * kScale) + kCrG * (pixels[1] * kScale) +
             kCrB * (pixels[2] * kScale) + 0.5;
  }
}

void FillCb(const std::uint16_t* pixels, std::int32_t width, double* row) {
  for (std::int32_t x = 0; x < width; ++x, pixels += 4) {
    row[x] = kCbR * (pixels[0] * kScale) + kCbG * (pixels[1] * kScale) +
             kCbB * (pixels[2] * kScale) + 0.5;
  }
}

void FillAlpha(const std::uint16_t* pixels, std::int32_t width, double* row) {
  for (std::int32_t x = 0; x < width; ++x, pixels += 4) {
    row[x] = pixels[3] * kScale;
  }
}

std::uint16_t ToSample(double value) {
  return static_cast<std::uint16_t>(static_cast<std::int32_t>(ClampToUnit(value) * kFull + 0.5));
}

void Store(const PlaneRow& planes, const PlaneScale& scale, std::int32_t width,
           std::uint16_t* pixels) {
  for (std::int32_t x = 0; x < width; ++x, pixels += 4) {
    const double y = scale.luma * planes.luma[x];
    const double cr = scale.chroma * planes.cr[x] - 0.5;
    const double cb = scale.chroma * planes.cb[x] - 0.5;
    pixels[0] = ToSample(y + kRCr * cr);
    pixels[1] = ToSample(kGY * y - kGCr * cr - kGCb * cb);
    pixels[2] = ToSample(kBY * y + kBCb * cb);
    if (planes.alpha != nullptr) {
      pixels[3] = ToSample(scale.alpha * planes.alpha[x]);
    }
  }
}

void ApplyCurveToRow(const EmphasisCurve& curve, std::int32_t width, double* row) {
  for (std::int32_t x = 0; x < width; ++x) {
    row[x] = ApplyCurve(row[x], curve);
  }
}

void UndoCurveOfRow(const EmphasisCurve& curve, const double* plane, double scale,
                    std::int32_t width, double* row) {
  for (std::int32_t x = 0; x < width; ++x) {
    row[x] = UndoCurve(scale * plane[x], curve);
  }
}

void Multiply(const double (*psf)[2], double (*work)[2], std::int32_t count) {
  for (std::int32_t k = 0; k < count; ++k) {
    const double real = psf[k][0] * work[k][0] - psf[k][1] * work[k][1];
    const double imaginary = psf[k][0] * work[k][1] + psf[k][1] * work[k][0];
    work[k][0] = real;
    work[k][1] = imaginary;
  }
}

// Null for the fastest.
std::atomic<const RowOperations*> inForce{nullptr};

}  // namespace

const RowOperations& PlainRowOperations() {
  static constexpr RowOperations kOperations{FillLuma, FillCr,          FillCb,         FillAlpha,
                                             Store,    ApplyCurveToRow, UndoCurveOfRow, Multiply};
  return kOperations;
}

const RowOperations& GetRowOperations() {
  if (const RowOperations* operations = inForce.load(std::memory_order_acquire)) {
    return *operations;
  }
  static const RowOperations* const fastest = [] {
    for (const RowOperations* vector : {Avx512RowOperations(), Avx2RowOperations()}) {
      if (vector != nullptr) {
        return vector;
      }
    }
    return &Vector128RowOperations();
  }();
  return *fastest;
}

ScopedRowOperations::ScopedRowOperations(const RowOperations* operations)
    : previous_(inForce.exchange(operations, std::memory_order_acq_rel)) {}

ScopedRowOperations::~ScopedRowOperations() { inForce.store(previous_, std::memory_order_release); }

}  // namespace lx
