// SPDX-License-Identifier: BSD-3-Clause
// Compiled for AVX2 alone, and entered only where the processor has it. The order of
// operations is that of the plain loops, rounding for rounding.
#include "fftlib/planes/row_operations.h"

#if defined(__AVX2__)

#include <immintrin.h>

#include <cstdint>

#include "fftlib/planes/colour_transform.h"
#include "fftlib/planes/curve_rows.h"

namespace lx {

using Lanes4 = double __attribute__((vector_size(32)));

template <>
struct LaneBits<Lanes4> {
  using Type = std::uint64_t __attribute__((vector_size(32)));
};

namespace {

constexpr double kScale = 1.5259021896696422e-05;
constexpr double kFull = 65535.0;

// Four pixels at a time: each is one 64-bit lane, its channels 16 bits apart.
constexpr std::int32_t kStep = 4;

__m256i LoadPixels(const std::uint16_t* pixels) {
  return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(pixels));
}

// One channel of four pixels, scaled. A number below 2^52 in the low bits of the double
// 2^52 is that double plus the number, exactly.
template <int Channel>
__m256d Unit(__m256i pixels) {
  const __m256i shifted = _mm256_srli_epi64(pixels, Channel * 16);
  const __m256i sample = _mm256_and_si256(shifted, _mm256_set1_epi64x(0xFFFF));
  const __m256d big = _mm256_set1_pd(4503599627370496.0);
  const __m256d number =
      _mm256_sub_pd(_mm256_castsi256_pd(_mm256_or_si256(sample, _mm256_castpd_si256(big))), big);
  return _mm256_mul_pd(number, _mm256_set1_pd(kScale));
}

__m256d Times(double constant, __m256d value) {
  return _mm256_mul_pd(_mm256_set1_pd(constant), value);
}

void FillLuma(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    const __m256i four = LoadPixels(pixels + 4 * x);
    const __m256d bg = _mm256_add_pd(Times(kLumaB, Unit<2>(four)), Times(kLumaG, Unit<1>(four)));
    _mm256_storeu_pd(row + x, _mm256_add_pd(bg, Times(kLumaR, Unit<0>(four))));
  }
  PlainRowOperations().luma(pixels + 4 * x, width - x, row + x);
}

__m256d Chroma(__m256i four, double r, double g, double b) {
  const __m256d rg = _mm256_add_pd(Times(r, Unit<0>(four)), Times(g, Unit<1>(four)));
  const __m256d rgb = _mm256_add_pd(rg, Times(b, Unit<2>(four)));
  return _mm256_add_pd(rgb, _mm256_set1_pd(0.5));
}

void FillCr(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    _mm256_storeu_pd(row + x, Chroma(LoadPixels(pixels + 4 * x), kCrR, kCrG, kCrB));
  }
  PlainRowOperations().cr(pixels + 4 * x, width - x, row + x);
}

void FillCb(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    _mm256_storeu_pd(row + x, Chroma(LoadPixels(pixels + 4 * x), kCbR, kCbG, kCbB));
  }
  PlainRowOperations().cb(pixels + 4 * x, width - x, row + x);
}

void FillAlpha(const std::uint16_t* pixels, std::int32_t width, double* row) {
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    _mm256_storeu_pd(row + x, Unit<3>(LoadPixels(pixels + 4 * x)));
  }
  PlainRowOperations().alpha(pixels + 4 * x, width - x, row + x);
}

// Clamped and rounded, as four 32-bit numbers. The first operand of max is the one that
// may be no number: the instruction then gives the second, 0.
__m128i ToSamples(__m256d value) {
  const __m256d unit =
      _mm256_min_pd(_mm256_max_pd(value, _mm256_setzero_pd()), _mm256_set1_pd(1.0));
  return _mm256_cvttpd_epi32(
      _mm256_add_pd(_mm256_mul_pd(unit, _mm256_set1_pd(kFull)), _mm256_set1_pd(0.5)));
}

void Store(const PlaneRow& planes, const PlaneScale& scale, std::int32_t width,
           std::uint16_t* pixels) {
  const __m256d half = _mm256_set1_pd(0.5);
  std::int32_t x = 0;
  for (; x + kStep <= width; x += kStep) {
    const __m256d y = Times(scale.luma, _mm256_loadu_pd(planes.luma + x));
    const __m256d cr = _mm256_sub_pd(Times(scale.chroma, _mm256_loadu_pd(planes.cr + x)), half);
    const __m256d cb = _mm256_sub_pd(Times(scale.chroma, _mm256_loadu_pd(planes.cb + x)), half);
    const __m128i r = ToSamples(_mm256_add_pd(y, Times(kRCr, cr)));
    const __m128i g =
        ToSamples(_mm256_sub_pd(_mm256_sub_pd(Times(kGY, y), Times(kGCr, cr)), Times(kGCb, cb)));
    const __m128i b = ToSamples(_mm256_add_pd(Times(kBY, y), Times(kBCb, cb)));
    auto* to = reinterpret_cast<__m128i*>(pixels + 4 * x);
    __m128i a;
    if (planes.alpha != nullptr) {
      a = ToSamples(Times(scale.alpha, _mm256_loadu_pd(planes.alpha + x)));
    } else {
      // The alpha that is there: the upper half of each pixel's second 32 bits.
      const __m128i odd = _mm_castps_si128(_mm_shuffle_ps(_mm_castsi128_ps(_mm_loadu_si128(to)),
                                                          _mm_castsi128_ps(_mm_loadu_si128(to + 1)),
                                                          _MM_SHUFFLE(3, 1, 3, 1)));
      a = _mm_srli_epi32(odd, 16);
    }
    const __m128i rg = _mm_or_si128(r, _mm_slli_epi32(g, 16));
    const __m128i ba = _mm_or_si128(b, _mm_slli_epi32(a, 16));
    _mm_storeu_si128(to, _mm_unpacklo_epi32(rg, ba));
    _mm_storeu_si128(to + 1, _mm_unpackhi_epi32(rg, ba));
  }
  const PlaneRow rest{planes.luma + x, planes.cr + x, planes.cb + x,
                      planes.alpha != nullptr ? planes.alpha + x : nullptr};
  PlainRowOperations().store(rest, scale, width - x, pixels + 4 * x);
}

void Multiply(const double (*psf)[2], double (*work)[2], std::int32_t count) {
  std::int32_t k = 0;
  for (; k + 2 <= count; k += 2) {
    const __m256d p = _mm256_loadu_pd(&psf[k][0]);
    const __m256d w = _mm256_loadu_pd(&work[k][0]);
    const __m256d byReal = _mm256_mul_pd(_mm256_movedup_pd(p), w);
    const __m256d byImaginary = _mm256_mul_pd(_mm256_permute_pd(p, 0xF), _mm256_permute_pd(w, 0x5));
    _mm256_storeu_pd(&work[k][0], _mm256_addsub_pd(byReal, byImaginary));
  }
  PlainRowOperations().multiply(psf + k, work + k, count - k);
}

}  // namespace

const RowOperations* Avx2RowOperations() {
  static constexpr RowOperations kOperations{
      FillLuma, FillCr, FillCb, FillAlpha, Store, CurveRows<Lanes4>::Apply, CurveRows<Lanes4>::Undo,
      Multiply};
  return __builtin_cpu_supports("avx2") != 0 ? &kOperations : nullptr;
}

}  // namespace lx

#else

namespace lx {

const RowOperations* Avx2RowOperations() { return nullptr; }

}  // namespace lx

#endif
