// SPDX-License-Identifier: BSD-3-Clause
// Square grids of doubles, their spectra, and the plans that transform them, for one size.
#pragma once

#include <cstdint>

#include "fftlib/backends/fftw/fft_library.h"

namespace lx {

// Arrays and plans are made where they are missing, and go together. Statuses.
struct FftGrids {
  using Plan = fftw_plan_s*;
  using Complex = double[2];

  FftGrids() = default;
  ~FftGrids() { Free(); }
  FftGrids(const FftGrids&) = delete;
  FftGrids& operator=(const FftGrids&) = delete;

  // The PSF's pair and its plan, cleared at that moment.
  std::int32_t PreparePsf(std::int32_t side, FftLibrary* library);

  // The pair that planes go through, and the plans there and back.
  //   clearNew  clears what was made, and what measuring has overwritten
  std::int32_t PrepareWork(std::int32_t side, bool clearNew, FftLibrary* library);

  static std::int32_t PrepareResult(std::int32_t side, double** result);

  void Free();

  Plan psfPlan = nullptr;      // psfSpatial to psfSpectrum
  Plan forwardPlan = nullptr;  // workSpatial to workSpectrum
  Plan inversePlan = nullptr;  // workSpectrum to workSpatial
  double* psfSpatial = nullptr;
  Complex* psfSpectrum = nullptr;
  double* workSpatial = nullptr;  // after a run: alpha's result
  Complex* workSpectrum = nullptr;
  double* lumaResult = nullptr;  // side * side times the planes' values, in the frame's rectangle
  double* crResult = nullptr;
  double* cbResult = nullptr;
};

}  // namespace lx
