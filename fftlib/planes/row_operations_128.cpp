// SPDX-License-Identifier: BSD-3-Clause
// Vectors of 128 bits, which every x86-64 and every arm64 processor has. The order of operations is
// that of the plain loops, rounding for rounding.
#include <cstdint>
#include <cstring>

#include "fftkernels/fftkernels/vectors.h"
#include "fftlib/planes/colour_transform.h"
#include "fftlib/planes/curve_rows.h"
#include "fftlib/planes/pixel_lanes.h"
#include "fftlib/planes/row_operations.h"

namespace lx {

using Doubles = double __attribute__((vector_size(16)));

template <>
struct LaneBits<Doubles> {
  using Type = std::uint64_t __attribute__((vector_size(16)));
};

namespace {

struct Vector128 {};
using Numbers = Lanes<Vector128, double, 2>;
using Words = LaneBits<Doubles>::Type;

// Two pixels at a time: each is one 64-bit lane, its channels 16 bits apart.
constexpr std::int32_t kStep = 2;

template <int channel>
[[gnu::always_inline]] inline Doubles Unit(Words two) {
  return SampleToUnit<channel, Doubles>(two);
}

[[gnu::always_inline]] inline Words Sample(Doubles value) { return UnitToSample<Words>(value); }

[[gnu::always_inline]] inline Words LoadPixels(const std::uint16_t* pixels) {
  Words two;
  std::memcpy(&two, pixels, sizeof two);
  return two;
}

void FillLuma(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    const auto two = LoadPixels(pixels + 4 * x);
    Numbers::Store(row + x, kLumaB * Unit<2>(two) + kLumaG * Unit<1>(two) + kLumaR * Unit<0>(two));
  }
  PlainRowOperations().luma(pixels + 4 * x, width - x, row + x);
}

void FillCr(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    const auto two = LoadPixels(pixels + 4 * x);
    Numbers::Store(row + x, kCrR * Unit<0>(two) + kCrG * Unit<1>(two) + kCrB * Unit<2>(two) + 0.5);
  }
  PlainRowOperations().cr(pixels + 4 * x, width - x, row + x);
}

void FillCb(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    const auto two = LoadPixels(pixels + 4 * x);
    Numbers::Store(row + x, kCbR * Unit<0>(two) + kCbG * Unit<1>(two) + kCbB * Unit<2>(two) + 0.5);
  }
  PlainRowOperations().cb(pixels + 4 * x, width - x, row + x);
}

void FillAlpha(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    Numbers::Store(row + x, Unit<3>(LoadPixels(pixels + 4 * x)));
  }
  PlainRowOperations().alpha(pixels + 4 * x, width - x, row + x);
}

void Store(const PlaneRow& planes, const PlaneScale& scale, std::int32_t width,
           std::uint16_t* pixels) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    const Doubles y = scale.luma * Numbers::Load(planes.luma + x);
    const Doubles cr = scale.chroma * Numbers::Load(planes.cr + x) - 0.5;
    const Doubles cb = scale.chroma * Numbers::Load(planes.cb + x) - 0.5;
    const Words alpha = planes.alpha != nullptr
                            ? Sample(scale.alpha * Numbers::Load(planes.alpha + x)) << 48
                            : LoadPixels(pixels + 4 * x) & (std::uint64_t{0xFFFF} << 48U);
    const Words two = Sample(y + kRCr * cr) | (Sample(kGY * y - kGCr * cr - kGCb * cb) << 16) |
                      (Sample(kBY * y + kBCb * cb) << 32) | alpha;
    std::memcpy(pixels + 4 * x, &two, sizeof two);
  }
  const PlaneRow rest{planes.luma + x, planes.cr + x, planes.cb + x,
                      planes.alpha != nullptr ? planes.alpha + x : nullptr};
  PlainRowOperations().store(rest, scale, width - x, pixels + 4 * x);
}

void Multiply(const double (*psf)[2], double (*work)[2], std::int32_t count) {
  std::int32_t k = 0;
  for (; k + 2 <= count; k += 2) {
    Doubles pReal;
    Doubles pImaginary;
    Doubles wReal;
    Doubles wImaginary;
    Numbers::LoadPairs(psf[k], pReal, pImaginary);
    Numbers::LoadPairs(work[k], wReal, wImaginary);
    Numbers::StorePairs(work[k], pReal * wReal - pImaginary * wImaginary,
                        pReal * wImaginary + pImaginary * wReal);
  }
  PlainRowOperations().multiply(psf + k, work + k, count - k);
}

// SSE2 clamps and rounds in so many steps that the plain loop is faster by a third.
#if defined(__SSE2__)
constexpr bool kStoresAsPlain = true;
#else
constexpr bool kStoresAsPlain = false;
#endif

}  // namespace

const RowOperations& Vector128RowOperations() {
  static const RowOperations operations{FillLuma,
                                        FillCr,
                                        FillCb,
                                        FillAlpha,
                                        kStoresAsPlain ? PlainRowOperations().store : Store,
                                        CurveRows<Doubles>::Apply,
                                        CurveRows<Doubles>::Undo,
                                        Multiply};
  return operations;
}

}  // namespace lx
