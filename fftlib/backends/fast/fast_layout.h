// SPDX-License-Identifier: BSD-3-Clause
// How large the buffers of this back-end are.
#pragma once

#include <algorithm>
#include <cstdint>

#include "fftkernels/mixed_radix/line_plan.h"
#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/backends/fast/reach.h"
#include "fftlib/core/grid.h"

namespace lx {

struct FastLayout {
  static constexpr std::uint64_t kPlanes = 4;

  // How many ways work at once. Further ones wait for one of these: what a way works in is as large
  // as four buffers of rows, and the number of ways is the host's affair.
  static constexpr std::int32_t kSlots = 16;

  constexpr FastLayout(Size frameSize, const GridSides& grid)
      : frame(frameSize),
        width(static_cast<std::int32_t>(grid.width)),
        height(static_cast<std::int32_t>(grid.height)) {}

  // Columns of a plane: the frequencies of a real row.
  constexpr std::int32_t Columns() const { return width / 2 + 1; }
  constexpr std::int32_t Blocks() const { return (Columns() + kLines - 1) / kLines; }

  // Rows of a block in a plane. Odd, so that the same row of many blocks does not fall on the same
  // place of a cache.
  constexpr std::int32_t PlaneRows() const { return frame.height | 1; }

  // Doubles: a block in a plane, and in the spectrum of the PSF; eight rows; and a way's scratch,
  // in which it has four planes of these or one block of whole columns.
  constexpr std::int64_t PlaneBlock() const { return std::int64_t{PlaneRows()} * kStride; }
  constexpr std::int64_t SpectrumBlock() const { return std::int64_t{height} * kStride; }
  constexpr std::int64_t RowBuffer() const { return std::int64_t{Blocks()} * kLines * kStride; }
  constexpr std::int64_t Slot() const {
    return std::max(static_cast<std::int64_t>(kPlanes) * RowBuffer(), SpectrumBlock());
  }

  constexpr std::int64_t Couples() const { return (width / 2 - 1) / 2; }
  constexpr std::int64_t RowTwiddles() const { return CountTwiddles(width / 2); }
  constexpr std::int64_t ColumnTwiddles() const { return CountTwiddles(height); }

  constexpr std::int64_t ReachWords() const { return BitWords(frame.width); }

  constexpr std::uint64_t TableBytes() const {
    return static_cast<std::uint64_t>(RowTwiddles() + ColumnTwiddles()) * sizeof(double) +
           static_cast<std::uint64_t>(Couples()) * sizeof(RowPlan::Couple) +
           2 * static_cast<std::uint64_t>(height) * sizeof(std::int32_t);
  }
  constexpr std::uint64_t SpectrumBytes() const { return InBlocks(SpectrumBlock()); }
  constexpr std::uint64_t PlaneBytes() const { return InBlocks(PlaneBlock()); }
  constexpr std::uint64_t ScratchBytes() const {
    return static_cast<std::uint64_t>(kSlots) * static_cast<std::uint64_t>(Slot()) * sizeof(double);
  }
  // Two of a bit a pixel: where the aperture is not zero, and what it reaches.
  constexpr std::uint64_t ReachBytes() const {
    return 2 * static_cast<std::uint64_t>(ReachWords()) * static_cast<std::uint64_t>(frame.height) *
           sizeof(BitWord);
  }

  Size frame;
  std::int32_t width;  // of the grid
  std::int32_t height;

 private:
  constexpr std::uint64_t InBlocks(std::int64_t block) const {
    return static_cast<std::uint64_t>(Blocks()) * static_cast<std::uint64_t>(block) *
           sizeof(double);
  }
};

}  // namespace lx
