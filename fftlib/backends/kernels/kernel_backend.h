// SPDX-License-Identifier: BSD-3-Clause
// Transforms by the fixed-size kernels, in double or single precision, in a grid whose sides are
// padded apart. Grids hold complex samples, which become their own spectrum in place; the order of
// frequencies is the kernels', and never restored.
#pragma once

#include <cstdint>
#include <string_view>

#include "fftlib/backends/backend.h"
#include "fftlib/backends/kernels/kernel_footprint.h"
#include "fftlib/lines/complex_grid.h"

namespace lx {

template <class T>
class KernelBackend final : public Backend {
 public:
  // On the tracked heap, made where they are missing.
  struct Grids {
    ComplexSample<T>* psf = nullptr;
    // After a run: alpha's result, or zeros; the three below have the planes in the frame's
    // rectangle.
    ComplexSample<T>* work = nullptr;
    ComplexSample<T>* luma = nullptr;
    ComplexSample<T>* cr = nullptr;
    ComplexSample<T>* cb = nullptr;
  };

  KernelBackend() = default;
  ~KernelBackend() override { KernelBackend::FreeGrids(); }

  std::string_view Name() const override { return KernelFootprint<T>::kName; }
  GridSides GridFor(Size frame, std::int32_t margin) const override {
    return KernelFootprint<T>::GridFor(frame.width, frame.height, margin);
  }
  std::uint64_t BytesAt(Size frame, const GridSides& grid) const override {
    return KernelFootprint<T>::BytesAt(frame, grid);
  }
  std::int32_t Load(const ImageRec& mask, const GridPlace& place, Rows* rows) override;
  void FreeGrids() override;
  bool IsLoaded() const override { return grids_.psf != nullptr && grids_.work != nullptr; }
  Rules GetRules() const override {
    return {
        .keepsMask = false, .takesFloat = false, .largestSide = KernelFootprint<T>::kLargestSide};
  }
  std::int32_t Convolve(const RunImages& run, const Look& look, Rows* rows) override;

  // Intended: without gamma, gain and offset.
  std::int32_t ConvolveChannels(const RunImages& run, const Look& look, const Gamma& gamma,
                                Rows* rows) override;

  // For tests.
  const Grids& GetGrids() const { return grids_; }

 private:
  ComplexGrid<T> Work(const GridPlace& place) const { return {grids_.work, place.grid}; }
  template <class Input>
  std::int32_t TransformPlane(const Input& input, const GridPlace& place, Rows* rows);

  Grids grids_;
};

}  // namespace lx
