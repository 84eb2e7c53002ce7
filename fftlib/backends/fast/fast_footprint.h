// SPDX-License-Identifier: BSD-3-Clause
// What a frame takes where our own transforms of mixed radix do the work.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "fftkernels/mixed_radix/quick_sizes.h"
#include "fftlib/backends/fast/fast_layout.h"
#include "fftlib/core/grid.h"

namespace lx {

class Backend;

struct FastFootprint {
  static constexpr std::string_view kName = "fast";
  static constexpr std::string_view kDescription =
      "transforms of our own, in double precision, on a grid that just holds frame and aperture";

  static constexpr std::int32_t kArithmetic = 1;
  static constexpr std::int32_t kLargestSide = kLargestGridSide;

  // Each side apart. The width is even, as rows are transformed as complex ones of half length.
  static constexpr GridSides GridFor(std::int32_t width, std::int32_t height, std::int32_t margin) {
    return {SideFor(width, margin, 2), SideFor(height, margin, 1)};
  }

  static constexpr std::uint64_t BytesAt(Size frame, const GridSides& grid) {
    const FastLayout layout(frame, grid);
    return layout.TableBytes() + layout.SpectrumBytes() + layout.ScratchBytes() +
           layout.ReachBytes() + FastLayout::kPlanes * layout.PlaneBytes();
  }

  // One with nothing loaded; null where memory has run out. To call it is to link it.
  static std::unique_ptr<Backend> Make();

 private:
  // A side that is too long stays as it is, as nothing will have it.
  static constexpr std::int64_t SideFor(std::int32_t side, std::int32_t margin, std::int32_t step) {
    const std::int64_t padded =
        std::max<std::int64_t>(side + 2 * std::int64_t{std::max(margin, 0)}, 2);
    if (padded > kLargestSide) {
      return padded;
    }
    // The largest is a quick one itself.
    return std::min<std::int64_t>(QuickSize(padded, step), kLargestSide);
  }
};

}  // namespace lx
