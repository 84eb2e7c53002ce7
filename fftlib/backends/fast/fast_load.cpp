// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/fast_load.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <limits>

#include "fftlib/backends/fast/fast_columns.h"
#include "fftlib/planes/channel_rows.h"

namespace lx {
namespace {

// Position of an offset from the middle in a line that begins with the middle.
std::int32_t Around(std::int32_t offset, std::int32_t length) {
  return offset < 0 ? offset + length : offset;
}

// The first channel of a row of the mask, as raw numbers: the sum is divided by in the end.
void ReadMaskRow(const ImageRec& mask, const MaskExtent& extent, std::int32_t y, double* row) {
  FillFromChannel(mask, 0, ChannelGamma{}, {extent.left, y, extent.right - extent.left + 1}, row);
}

// Rows of the mask into rows of spectra, the extent's first at the plane's first.
struct MaskPass {
  const ImageRec* mask;
  MaskExtent extent;
  double scale;
  FastGrids* grids;
  const LineOperations* operations;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
    if (first > last) {
      return;
    }
    const ScratchSlots::Use scratch(&grids->Slots());
    for (std::int32_t y = first; y <= last; y += kLines) {
      const std::int32_t end = std::min(y + kLines - 1, last);
      std::int32_t granted = y;
      while (granted <= end && !rows.Cancelled()) {
        ++granted;
      }
      const std::int32_t from = std::max(y, extent.top);
      const std::int32_t to = std::min(end, extent.bottom);
      if (from <= to) {
        Transform(from, to, granted, scratch.Data());
      }
    }
  }

 private:
  // A row from granted on is zero.
  void Transform(std::int32_t from, std::int32_t to, std::int32_t granted, double* buffer) const {
    const FastLayout& layout = grids->Layout();
    std::fill_n(buffer, layout.RowBuffer(), 0.0);
    // A row of numbers has room behind the buffer.
    double* row = buffer + layout.RowBuffer();
    for (std::int32_t y = from; y <= to && y < granted; ++y) {
      ReadMaskRow(*mask, extent, y, row);
      for (std::int32_t x = extent.left; x <= extent.right; ++x) {
        const std::int32_t at = Around(x - MaskMiddle(mask->width), layout.width);
        buffer[std::ptrdiff_t{at} * kLines + (y - from)] = row[x - extent.left] * scale;
      }
    }
    operations->forwardRows(grids->Rows(), buffer);
    operations->spread(buffer, layout.Columns(), to - from + 1, layout.PlaneBlock(),
                       grids->Plane(0) + std::ptrdiff_t{from - extent.top} * kStride);
  }
};

struct Weights {
  double sum = 0.0;
  double least = std::numeric_limits<double>::infinity();
};

Weights WeighMask(const ImageRec& mask, const MaskExtent& extent, double* row) {
  Weights weights;
  for (std::int32_t y = extent.top; y <= extent.bottom; ++y) {
    ReadMaskRow(mask, extent, y, row);
    for (std::int32_t x = extent.left; x <= extent.right; ++x) {
      const double weight = row[x - extent.left];
      weights.sum += weight;
      weights.least = weight > 0.0 ? std::min(weights.least, weight) : weights.least;
    }
  }
  return weights;
}

}  // namespace

double LoadSpectrum(const ImageRec& mask, const MaskExtent& extent, FastGrids* grids,
                    const LineOperations& operations, Rows* rows) {
  const FastLayout& layout = grids->Layout();
  Weights weights;
  {
    const ScratchSlots::Use scratch(&grids->Slots());
    weights = WeighMask(mask, extent, scratch.Data());
  }
  // Rows forward double what they are given, of the mask as of the frame, and back they do so once
  // more; half a row's length and the columns' length multiply too.
  const double scale = 1.0 / (4.0 * layout.width * layout.height * weights.sum);
  rows->Run(MaskPass{&mask, extent, scale, grids, &operations}, mask.height);
  std::int32_t* source = grids->MaskSource();
  std::fill_n(source, layout.height, -1);
  for (std::int32_t y = extent.top; y <= extent.bottom; ++y) {
    source[Around(y - MaskMiddle(mask.height), layout.height)] = y - extent.top;
  }
  rows->Run(SpectrumPass{grids, &operations}, layout.Blocks());
  return weights.least / weights.sum;
}

}  // namespace lx
