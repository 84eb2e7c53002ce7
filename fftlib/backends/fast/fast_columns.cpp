// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/fast_columns.h"

#include <algorithm>

namespace lx {

// No cancel is asked for here: the rows around it ask.
void ConvolvePass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const FastLayout& layout = grids->Layout();
  const ColumnRows columnRows{grids->FrameSource(), layout.frame.height};
  const ScratchSlots::Use scratch(&grids->Slots());
  for (std::ptrdiff_t b = first; b <= last; ++b) {
    const double* spectrum = grids->Spectrum() + b * layout.SpectrumBlock();
    for (std::size_t p = 0; p < count; ++p) {
      operations->convolveColumns(grids->Columns(), columnRows, spectrum,
                                  planes[p] + b * layout.PlaneBlock(), scratch.Data());
    }
  }
}

void SpectrumPass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  const FastLayout& layout = grids->Layout();
  const ColumnRows columnRows{grids->MaskSource(), 0};
  for (std::ptrdiff_t b = first; b <= last; ++b) {
    operations->forwardColumns(grids->Columns(), columnRows,
                               grids->Plane(0) + b * layout.PlaneBlock(),
                               grids->Spectrum() + b * layout.SpectrumBlock());
  }
}

void PlaceFrameRows(const FastLayout& layout, std::int32_t above, bool repeats,
                    std::int32_t* source) {
  const std::int32_t rows = layout.frame.height;
  for (std::int32_t y = 0; y < layout.height; ++y) {
    // The grid comes round: its last rows lie above the frame and repeat the frame's first one, the
    // others below it repeat the last.
    const std::int32_t outside = y < layout.height - above ? rows - 1 : 0;
    source[y] = y < rows ? y : repeats ? outside : -1;
  }
}

}  // namespace lx
