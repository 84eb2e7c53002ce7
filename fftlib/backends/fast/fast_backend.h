// SPDX-License-Identifier: BSD-3-Clause
// Our own transforms of mixed radix, in double precision, on a grid whose sides just hold frame and
// aperture.
//
// A frame goes three times through memory: its rows, eight at a time, from pixels to spectra; its
// columns, eight at a time, forward, times the PSF's spectrum, and backward; its rows back to
// pixels. Only rows of the frame are ever stored; what is repeated around it is read once more.
//
// Frames depend on the mask that was loaded last and on nothing before it. Bits are the same for
// any number of ways, and on every processor and system.
//
// Float images go through it as they are, above 1 and below 0, but for what an emphasis clamps:
// see ApplyOpenCurve. What they hold is exact to some 2^-50 of their brightest number.
#pragma once

#include <array>
#include <cstdint>
#include <string_view>

#include "fftlib/backends/backend.h"
#include "fftlib/backends/fast/fast_footprint.h"
#include "fftlib/backends/fast/fast_grids.h"
#include "fftlib/backends/fast/fast_rows.h"
#include "fftlib/backends/fast/mask_extent.h"

namespace lx {

class FastBackend final : public Backend {
 public:
  // Works by the fastest operations that the processor has, or by those given, which must outlive
  // it.
  FastBackend() : FastBackend(GetLineOperations()) {}
  explicit FastBackend(const LineOperations& operations) : operations_(operations) {}

  std::string_view Name() const override { return FastFootprint::kName; }
  GridSides GridFor(Size frame, std::int32_t margin) const override {
    return FastFootprint::GridFor(frame.width, frame.height, margin);
  }
  GridSides GridOf(const ImageRec& mask, std::int32_t margin) const override;
  std::uint64_t BytesAt(Size frame, const GridSides& grid) const override {
    return FastFootprint::BytesAt(frame, grid);
  }
  std::int32_t Load(const ImageRec& mask, const GridPlace& place, Rows* rows) override;
  void FreeGrids() override;
  bool IsLoaded() const override { return isLoaded_; }
  Rules GetRules() const override {
    return {.keepsMask = false, .takesFloat = true, .largestSide = FastFootprint::kLargestSide};
  }
  std::int32_t Convolve(const RunImages& run, const Look& look, Rows* rows) override;
  std::int32_t ConvolveChannels(const RunImages& run, const Look& look, const Gamma& gamma,
                                Rows* rows) override;

 private:
  FastFrame MakeFrame(const Look& look);
  std::int32_t PreparePlanes(std::size_t count);
  // Convolves a plane in bands of magnitude. Its numbers and its bands go through planes that the
  // caller names; the finished rows are in the sum. False where all are 0, with no sum made.
  struct BandPlanes {
    double* values;
    double* work;
    double* sum;
  };
  bool ConvolveBands(const FastFrame& frame, const PicturePlane& from, const BandPlanes& planes,
                     Rows* rows);
  static bool NeedsBands(const PicturePlane& plane, Rows* rows);
  bool HasEvenAlpha(const PicturePlane& plane, const Look& look, double* value, Rows* rows) const;
  void ConvolveColumns(const std::array<double*, FastLayout::kPlanes>& planes, std::size_t count,
                       Rows* rows);

  const LineOperations& operations_;
  FastGrids grids_;
  Aperture aperture_{};
  double leastWeight_ = 0.0;  // of its weights but 0, of a sum of 1
  bool isLoaded_ = false;
};

}  // namespace lx
