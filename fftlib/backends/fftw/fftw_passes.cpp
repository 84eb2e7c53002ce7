// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/fftw_passes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fftlib/planes/edge_rows.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_operations.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

constexpr double kMaskScale = 0.003921568859368563;

// A piece of a row at a time, so that what the inverse curve makes of it stays at hand.
constexpr std::int32_t kPiece = 256;

// What one transform there and back multiplies by, undone.
double ScaleOf(const GridPlace& place) {
  const double side = place.grid.width;
  return 1.0 / (side * side);
}

// The columns beside the frame.
void PadColumns(const GridPlace& place, double* gridRow, double left, double right) {
  std::fill(gridRow, gridRow + place.offsetX, left);
  std::fill(gridRow + place.offsetX + place.frame.width, gridRow + place.grid.width, right);
}

void ClearGridRows(const GridPlace& place, double* grid, std::int32_t first, std::int32_t end) {
  std::fill(grid + place.RowStart(first), grid + place.RowStart(end), 0.0);
}

// One grid row of a plane. The margins take the values after the curve.
void InputRow(const PlaneInput& plane, std::int32_t y) {
  const GridPlace& place = plane.place;
  double* gridRow = plane.grid + place.RowStart(place.offsetY + y);
  double* frameRow = gridRow + place.offsetX;
  const std::int32_t width = place.frame.width;
  FillFromPicture(*plane.source, plane.channelBit, {0, y, width}, frameRow);
  if (plane.curve.on) {
    GetRowOperations().applyCurve(plane.curve, width, frameRow);
  }
  if (plane.edgeMode == kEdgeReplicate) {
    PadColumns(place, gridRow, frameRow[0], frameRow[width - 1]);
  } else {
    PadColumns(place, gridRow, 0.0, 0.0);
  }
}

void OutputRow(const PictureOutput& output, std::int32_t y) {
  const double scale = ScaleOf(output.place);
  const EmphasisCurve& curve = output.curve;
  double luma[kPiece];
  double alpha[kPiece];
  for (std::int32_t x = 0; x < output.dest->width; x += kPiece) {
    const std::int32_t width = std::min(kPiece, output.dest->width - x);
    const std::ptrdiff_t start = output.place.FrameStart(y) + x;
    PlaneRow planes{output.luma + start, output.cr + start, output.cb + start,
                    output.alpha != nullptr ? output.alpha + start : nullptr};
    PlaneScale by{scale, scale, scale};
    const auto uncurve = [&](const double*& plane, double& planeScale, double* piece) {
      GetRowOperations().undoCurve(curve, plane, planeScale, width, piece);
      plane = piece;
      planeScale = 1.0;
    };
    if (curve.on) {
      uncurve(planes.luma, by.luma, luma);
    }
    if (curve.on && planes.alpha != nullptr && output.curveOfAlpha) {
      uncurve(planes.alpha, by.alpha, alpha);
    }
    StoreToPicture(planes, by, {x, y, width}, SampleScale<std::uint32_t>::full, output.dest);
  }
}

}  // namespace

void MaskInput::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  ForEachRow(rows, first, last, [this](std::int32_t y) {
    // Whatever else a mask may say of itself, it is read as bytes.
    const auto* pixels =
        static_cast<const std::uint8_t*>(mask->data) + std::ptrdiff_t{y} * mask->width;
    double* row = grid + place.FrameStart(y);
    for (std::int32_t x = 0; x < mask->width; ++x) {
      row[x] = pixels[x] * kMaskScale;
    }
  });
}

void KeepRows(const double* grid, const GridPlace& place, std::int32_t first, std::int32_t last,
              double* kept) {
  if (kept == nullptr) {
    return;
  }
  for (std::int32_t y = first; y <= last; ++y) {
    const std::ptrdiff_t start = place.FrameStart(y);
    std::copy_n(grid + start, place.frame.width, kept + start);
  }
}

// The grid still holds the plane before. So each range clears its margins of zero here, and its
// rows that a cancelled pass does not reach.
void PlaneInput::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const std::int32_t end = ForEachRow(rows, first, last, [this](std::int32_t y) {
    KeepRows(grid, place, y, y, kept);
    InputRow(*this, y);
  });
  KeepRows(grid, place, end, last, kept);
  ClearGridRows(place, grid, place.offsetY + end, place.offsetY + last + 1);
  if (edgeMode == kEdgeReplicate) {
    RepeatEdgeRows(grid, place, first, last);
    return;
  }
  if (first == 0) {
    ClearGridRows(place, grid, 0, place.offsetY);
  }
  if (last == place.frame.height - 1) {
    ClearGridRows(place, grid, place.offsetY + place.frame.height, place.grid.height);
  }
}

void MultiplySpectra::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  const auto multiply = GetRowOperations().multiply;
  for (std::int32_t y = first; y <= last; ++y) {
    const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(y) * count;
    multiply(psf + start, work + start, count);
  }
}

void PictureOutput::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  ForEachRow(rows, first, last, [this](std::int32_t y) { OutputRow(*this, y); });
}

void ChannelInput::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  ForEachRow(rows, first, last, [this](std::int32_t y) {
    const std::int32_t width = place.frame.width;
    double* gridRow = grid + place.RowStart(place.offsetY + y);
    double* frameRow = gridRow + place.offsetX;
    FillFromChannel(*source, channel, gamma, {0, y, width}, frameRow);
    if (edgeMode == kEdgeReplicate) {
      PadColumns(place, gridRow, frameRow[0], frameRow[width - 1]);
    }
  });
  if (edgeMode == kEdgeReplicate) {
    RepeatEdgeRows(grid, place, first, last);
  }
}

void ChannelOutput::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  ForEachRow(rows, first, last, [this](std::int32_t y) {
    StoreToChannel(grid + place.FrameStart(y), ScaleOf(place), channel, gamma, {0, y, dest->width},
                   dest);
  });
}

}  // namespace lx
