// SPDX-License-Identifier: BSD-3-Clause
// The inner loops over rows of 16-bit pixels with four channels, which is what frames are,
// and over rows of a spectrum. They stand in builds that give the same bits: plain loops,
// vectors of 128 bits, AVX2, and AVX-512 for what gains by it.
#pragma once

#include <cstdint>

#include "fftlib/planes/emphasis_curve.h"

namespace lx {

// One row of the three colour planes and of alpha, at its first pixel.
struct PlaneRow {
  const double* luma;
  const double* cr;
  const double* cb;
  const double* alpha;  // null leaves the pixels' alpha as it is
};

// What each plane is multiplied by on its way out.
struct PlaneScale {
  double luma;
  double chroma;
  double alpha;
};

struct RowOperations {
  // One plane of a row of pixels, without emphasis.
  using Fill = void (*)(const std::uint16_t* pixels, std::int32_t width, double* row);
  Fill luma;
  Fill cr;
  Fill cb;
  Fill alpha;

  // A row of pixels from its planes, each scaled first; clamped and rounded.
  void (*store)(const PlaneRow& planes, const PlaneScale& scale, std::int32_t width,
                std::uint16_t* pixels);

  // The emphasis curve over a row, in place, and its inverse from a plane that is scaled
  // first. For a curve that is on.
  void (*applyCurve)(const EmphasisCurve& curve, std::int32_t width, double* row);
  void (*undoCurve)(const EmphasisCurve& curve, const double* plane, double scale,
                    std::int32_t width, double* row);

  // work = psf * work, as count complex numbers.
  void (*multiply)(const double (*psf)[2], double (*work)[2], std::int32_t count);
};

const RowOperations& PlainRowOperations();
const RowOperations& Vector128RowOperations();

// Null where the processor, or the build, does not have them.
const RowOperations* Avx2RowOperations();
const RowOperations* Avx512RowOperations();

// Those in force: the fastest that the processor has, unless a test has put others in their place.
const RowOperations& GetRowOperations();

// Puts operations in force for the length of a scope, in which no frame is in work at its ends.
// They are borrowed, and the processor must have them.
class ScopedRowOperations {
 public:
  explicit ScopedRowOperations(const RowOperations* operations);
  ~ScopedRowOperations();
  ScopedRowOperations(const ScopedRowOperations&) = delete;
  ScopedRowOperations& operator=(const ScopedRowOperations&) = delete;

 private:
  const RowOperations* previous_;
};

}  // namespace lx
