// SPDX-License-Identifier: BSD-3-Clause
// A back-end that no module has: what one needs beyond its folder is a line in the list.
#pragma once

#include <algorithm>
#include <cstdint>
#include <memory>
#include <string_view>

#include "fftlib/backends/backend.h"
#include "fftlib/core/grid.h"

namespace lx_test {

struct DummyFootprint {
  static constexpr std::string_view kName = "dummy";
  static constexpr std::string_view kDescription = "plain sums over every pixel of the mask";

  static constexpr std::int32_t kArithmetic = 1;
  static constexpr std::int32_t kLargestSide = lx::kLargestPaddedSize;

  // Sides apart, and no powers of two.
  static constexpr lx::GridSides GridFor(std::int32_t width, std::int32_t height,
                                         std::int32_t margin) {
    const std::int64_t both = 2 * std::int64_t{std::max(margin, 0)};
    return {width + both, height + both};
  }

  // The mask as numbers, and four planes.
  static constexpr std::uint64_t BytesAt(lx::Size /*frame*/, const lx::GridSides& grid) {
    return 5 * static_cast<std::uint64_t>(grid.width) * static_cast<std::uint64_t>(grid.height) *
           sizeof(double);
  }

  static std::unique_ptr<lx::Backend> Make();
};

}  // namespace lx_test
