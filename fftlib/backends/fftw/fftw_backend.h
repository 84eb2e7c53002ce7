// SPDX-License-Identifier: BSD-3-Clause
// The effect as it is written: transforms by FFTW in double precision, in a square grid whose side
// is a power of two.
//
// PSF and planes have a pair of grid and spectrum each, and luma, Cr and Cb a grid for their
// results. A spectrum of an N x N grid has N rows of N/2 + 1 complex numbers. With measured plans
// the file of wisdom is read before and written after each plan, and once more at the end.
#pragma once

#include <cstdint>
#include <string_view>

#include "fftlib/backends/backend.h"
#include "fftlib/backends/fftw/fft_grids.h"
#include "fftlib/backends/fftw/fft_library.h"
#include "fftlib/backends/fftw/fftw_footprint.h"

namespace lx {

class FftwBackend final : public Backend {
 public:
  FftwBackend() = default;
  ~FftwBackend() override;

  std::string_view Name() const override { return FftwFootprint::kName; }
  GridSides GridFor(Size frame, std::int32_t margin) const override {
    return FftwFootprint::GridFor(frame.width, frame.height, margin);
  }
  std::uint64_t BytesAt(Size frame, const GridSides& grid) const override {
    return FftwFootprint::BytesAt(frame, grid);
  }
  std::int32_t Load(const ImageRec& mask, const GridPlace& place, Rows* rows) override;
  void FreeGrids() override { grids_.Free(); }
  bool IsLoaded() const override;
  Rules GetRules() const override {
    return {.keepsMask = true, .takesFloat = true, .largestSide = FftwFootprint::kLargestSide};
  }
  std::int32_t Convolve(const RunImages& run, const Look& look, Rows* rows) override;
  std::int32_t ConvolveChannels(const RunImages& run, const Look& look, const Gamma& gamma,
                                Rows* rows) override;
  TransformLibrary* Library() override { return &library_; }

  // For tests and measurements.
  const FftGrids& Grids() const { return grids_; }
  const FftLibrary& OwnLibrary() const { return library_; }

 private:
  template <class Input>
  void TransformPlane(const Input& input, const GridPlace& place, Rows* rows);

  // Threads end with the library, after the plans.
  FftLibrary library_;
  FftGrids grids_;
};

}  // namespace lx
