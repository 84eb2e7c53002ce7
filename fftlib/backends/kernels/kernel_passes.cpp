// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/kernels/kernel_passes.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "baselib/utils/convert.h"
#include "fftlib/planes/channel_rows.h"
#include "fftlib/planes/edge_rows.h"
#include "fftlib/planes/emphasis.h"
#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_operations.h"

namespace lx {
namespace {

// What 1 becomes in 32 bits.
// Intended: one more than they hold, so that a full white wraps around to 0.
constexpr double kFull32 = 4294967296.0;

// From a mask's samples to 0..1, by sample type.
constexpr float kMaskScales[] = {0.003921568859368563F, 1.5259021893146654e-05F,
                                 2.3283064365386963e-10F, 1.0F};

// A piece of a row at a time, so that what is made of it stays at hand.
constexpr std::int32_t kPiece = 256;

template <class T>
T Narrow(double value) {
  if constexpr (sizeof(T) == sizeof(float)) {
    return NarrowToFloat(value);
  } else {
    return value;
  }
}

// Calls function(piece, count) for row y of an image of that width, from left to right.
template <class Function>
void ForEachPiece(std::int32_t width, std::int32_t y, Function function) {
  for (std::int32_t x = 0; x < width; x += kPiece) {
    function(RowPiece{x, y, std::min(kPiece, width - x)});
  }
}

// The grid's row for row y of the frame, at its first pixel.
template <class T>
ComplexSample<T>* FrameRow(const ComplexGrid<T>& grid, const GridPlace& place, std::int32_t y) {
  return grid.samples + place.FrameStart(y);
}

// The columns beside the frame, which repeat its ends.
template <class T>
void RepeatEnds(const GridPlace& place, ComplexSample<T>* frameRow) {
  const std::int32_t width = place.frame.width;
  std::fill_n(frameRow - place.offsetX, place.offsetX, frameRow[0]);
  std::fill_n(frameRow + width, place.grid.width - place.offsetX - width, frameRow[width - 1]);
}

// The emphasis of a plane, in the precision of the grid.
template <class T>
struct Curve {
  explicit Curve(float emphasis) : g(emphasis), curve(MakeEmphasisCurve(emphasis)) {}

  void Apply(double* values, std::int32_t count) const {
    if constexpr (sizeof(T) == sizeof(float)) {
      for (std::int32_t i = 0; i < count; ++i) {
        values[i] = ApplyEmphasis(NarrowToFloat(values[i]), g);
      }
    } else if (curve.on) {
      GetRowOperations().applyCurve(curve, count, values);
    }
  }

  void Undo(double* values, std::int32_t count) const {
    if constexpr (sizeof(T) == sizeof(float)) {
      for (std::int32_t i = 0; i < count; ++i) {
        values[i] = UndoEmphasis(NarrowToFloat(values[i]), g);
      }
    } else if (curve.on) {
      GetRowOperations().undoCurve(curve, values, 1.0, count, values);
    }
  }

  float g;
  EmphasisCurve curve;
};

template <class T>
void FillPlaneRow(const KernelPlaneInput<T>& input, const Curve<T>& curve, std::int32_t y) {
  ComplexSample<T>* row = FrameRow(input.grid, input.place, y);
  ForEachPiece(input.place.frame.width, y, [&](const RowPiece& piece) {
    double values[kPiece];
    FillFromPicture(*input.source, input.channelBit, piece, values);
    if (HasCurve(input.channelBit, input.look)) {
      curve.Apply(values, piece.width);
    }
    for (std::int32_t i = 0; i < piece.width; ++i) {
      row[piece.x + i] = {static_cast<T>(values[i]), T{0}};
    }
  });
}

// One stored channel of a row, times scale.
template <class T>
void FillChannelRow(const ImageRec& image, std::int32_t channel, double scale, std::int32_t y,
                    ComplexSample<T>* row) {
  ForEachPiece(image.width, y, [&](const RowPiece& piece) {
    double values[kPiece];
    FillFromChannel(image, channel, ChannelGamma{}, piece, values);
    for (std::int32_t i = 0; i < piece.width; ++i) {
      row[piece.x + i] = {Narrow<T>(values[i] * scale), T{0}};
    }
  });
}

template <class T>
void ReadReals(const ComplexSample<T>* row, std::int32_t count, double* values) {
  for (std::int32_t i = 0; i < count; ++i) {
    values[i] = static_cast<double>(row[i].re);
  }
}

template <class T>
void PictureRow(const KernelPictureOutput<T>& output, const Curve<T>& curve, std::int32_t y) {
  const ComplexGrid<T>* const grids[] = {&output.luma, &output.cr, &output.cb, &output.alpha};
  ForEachPiece(output.dest->width, y, [&](const RowPiece& piece) {
    double planes[4][kPiece];
    for (int plane = 0; plane < (output.withAlpha ? 4 : 3); ++plane) {
      ReadReals(FrameRow(*grids[plane], output.place, y) + piece.x, piece.width, planes[plane]);
    }
    curve.Undo(planes[0], piece.width);
    if (output.withAlpha && output.look.emphasisAlpha) {
      curve.Undo(planes[3], piece.width);
    }
    StoreToPicture({planes[0], planes[1], planes[2], output.withAlpha ? planes[3] : nullptr},
                   {1.0, 1.0, 1.0}, piece, kFull32, output.dest);
  });
}

}  // namespace

template <class T>
void KernelMaskInput<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const double scale = static_cast<double>(kMaskScales[mask->sampleType]);
  ForEachRow(rows, first, last,
             [&](std::int32_t y) { FillChannelRow(*mask, 0, scale, y, FrameRow(grid, place, y)); });
}

template <class T>
void KernelPlaneInput<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const Curve<T> curve(look.emphasis);
  const bool repeats = look.edgeMode == kEdgeReplicate;
  std::int32_t y = ForEachRow(rows, first, last, [&](std::int32_t row) {
    KeepKernelRows(grid, place, row, row, kept);
    FillPlaneRow(*this, curve, row);
    if (repeats) {
      RepeatEnds(place, FrameRow(grid, place, row));
    }
  });
  // Rows that a cancelled pass does not reach hold the plane before, or nothing after a plane of
  // chroma.
  KeepKernelRows(grid, place, y, last, kept);
  if (channelBit == kBitCb || channelBit == kBitAlpha) {
    for (; y <= last; ++y) {
      std::fill_n(grid.Row(place.offsetY + y), place.grid.width, ComplexSample<T>{});
    }
  }
  if (repeats) {
    RepeatEdgeRows(grid.samples, place, first, last);
  }
}

template <class T>
void KernelChannelInput<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const bool repeats = edgeMode == kEdgeReplicate;
  ForEachRow(rows, first, last, [&](std::int32_t y) {
    FillChannelRow(*source, channel, 1.0, y, FrameRow(grid, place, y));
    if (repeats) {
      RepeatEnds(place, FrameRow(grid, place, y));
    }
  });
  if (repeats) {
    RepeatEdgeRows(grid.samples, place, first, last);
  }
}

template <class T>
void KeepKernelRows(const ComplexGrid<T>& grid, const GridPlace& place, std::int32_t first,
                    std::int32_t last, const ComplexGrid<T>& kept) {
  if (kept.samples == nullptr) {
    return;
  }
  for (std::int32_t y = first; y <= last; ++y) {
    std::copy_n(FrameRow(grid, place, y), place.frame.width, FrameRow(kept, place, y));
  }
}

template <class T>
void KernelPictureOutput<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const Curve<T> curve(look.emphasis);
  ForEachRow(rows, first, last, [&](std::int32_t y) { PictureRow(*this, curve, y); });
}

template <class T>
void KernelChannelOutput<T>::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  ForEachRow(rows, first, last, [&](std::int32_t y) {
    ForEachPiece(dest->width, y, [&](const RowPiece& piece) {
      double values[kPiece];
      ReadReals(FrameRow(grid, place, y) + piece.x, piece.width, values);
      StoreToChannel(values, 1.0, channel, ChannelGamma{}, piece, dest);
    });
  });
}

template struct KernelMaskInput<float>;
template struct KernelMaskInput<double>;
template struct KernelPlaneInput<float>;
template struct KernelPlaneInput<double>;
template struct KernelChannelInput<float>;
template struct KernelChannelInput<double>;
template struct KernelPictureOutput<float>;
template struct KernelPictureOutput<double>;
template struct KernelChannelOutput<float>;
template struct KernelChannelOutput<double>;
template void KeepKernelRows<float>(const ComplexGrid<float>&, const GridPlace&, std::int32_t,
                                    std::int32_t, const ComplexGrid<float>&);
template void KeepKernelRows<double>(const ComplexGrid<double>&, const GridPlace&, std::int32_t,
                                     std::int32_t, const ComplexGrid<double>&);

}  // namespace lx
