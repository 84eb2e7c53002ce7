// SPDX-License-Identifier: BSD-3-Clause
// The column passes of this back-end: a block of eight columns at a time.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fast/fast_grids.h"
#include "fftlib/core/rows.h"

namespace lx {

// Planes of row spectra, convolved down their columns, in place. The planes of a block come one
// after another, while the PSF's is at hand.
struct ConvolvePass {
  FastGrids* grids;
  const LineOperations* operations;
  std::array<double*, FastLayout::kPlanes> planes;
  std::size_t count;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// The row spectra of a mask, in the first plane, to the PSF's spectrum.
struct SpectrumPass {
  FastGrids* grids;
  const LineOperations* operations;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// Which row of the frame each number of a column is: below it the last one goes on, and what is
// left of the frame comes round from the grid's other end.
//   above    rows that the aperture needs there
//   repeats  else there is zero around the frame
void PlaceFrameRows(const FastLayout& layout, std::int32_t above, bool repeats,
                    std::int32_t* source);

}  // namespace lx
