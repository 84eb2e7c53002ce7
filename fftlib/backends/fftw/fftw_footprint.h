// SPDX-License-Identifier: BSD-3-Clause
// What a frame takes where FFTW transforms it.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "fftlib/core/grid.h"

namespace lx {

class Backend;

struct FftwFootprint {
  static constexpr std::string_view kName = "exact";
  static constexpr std::string_view kDescription =
      "the effect as it is written: FFTW, in double precision, on a square grid";

  static constexpr std::int32_t kArithmetic = 1;
  static constexpr std::int32_t kLargestSide = kLargestPaddedSize;

  // One side for both: a square is the same whichever side the library is given first.
  static constexpr GridSides GridFor(std::int32_t width, std::int32_t height, std::int32_t margin) {
    const std::int64_t side = std::max(PaddedSide(width, margin), PaddedSide(height, margin));
    return {side, side};
  }

  // Five planes of real numbers, and the spectra of two of them: half a grid and one column.
  static constexpr std::uint64_t BytesAt(Size /*frame*/, const GridSides& grid) {
    const auto width = static_cast<std::uint64_t>(grid.width);
    const auto height = static_cast<std::uint64_t>(grid.height);
    return 5 * height * width * sizeof(double) + 2 * height * (width / 2 + 1) * 2 * sizeof(double);
  }

  // One with nothing loaded; null where memory has run out. To call it is to link it.
  static std::unique_ptr<Backend> Make();
};

}  // namespace lx
