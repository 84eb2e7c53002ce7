// SPDX-License-Identifier: BSD-3-Clause
// What a frame takes where the fixed-size kernels transform it.
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include "fftlib/core/grid.h"

namespace lx {

class Backend;

// T is what the numbers of the grids are: float or double.
template <class T>
struct KernelFootprint {
  static constexpr bool kIsSingle = sizeof(T) == sizeof(float);

  static constexpr std::string_view kName = kIsSingle ? "single" : "double";
  static constexpr std::string_view kDescription =
      kIsSingle
          ? "the same kernels in single precision: for previews, and where there is no emphasis"
          : "kernels of fixed sizes, in double precision, on a grid whose sides are apart";

  static constexpr std::int32_t kArithmetic = 1;
  static constexpr std::int32_t kLargestSide = kLargestPaddedSize;

  static constexpr GridSides GridFor(std::int32_t width, std::int32_t height, std::int32_t margin) {
    return {PaddedSide(width, margin), PaddedSide(height, margin)};
  }

  // Five planes of complex numbers, which become their own spectra.
  static constexpr std::uint64_t BytesAt(Size /*frame*/, const GridSides& grid) {
    return 5 * static_cast<std::uint64_t>(grid.width) * static_cast<std::uint64_t>(grid.height) *
           2 * sizeof(T);
  }

  // One with nothing loaded; null where memory has run out. To call it is to link it.
  static std::unique_ptr<Backend> Make();
};

}  // namespace lx
