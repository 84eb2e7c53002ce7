// The row passes of this back-end, eight rows at a time: from pictures to planes of row spectra and
// back. A pass writes only its own rows.
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fast/fast_grids.h"
#include "fftlib/core/rows.h"
#include "fftlib/core/run.h"
#include "fftlib/planes/channel_rows.h"
#include "fftlib/planes/emphasis_curve.h"
#include "imagelib/imagelib.h"

namespace lx {

// What all passes of a frame work in.
struct FastFrame {
  FastGrids* grids;
  const LineKernels* kernels;
  std::int32_t edgeMode;
  std::int32_t before;  // columns that the aperture needs to the left of the frame

  // Eight rows of a plane at the first of them.
  double* RowsOf(double* plane, std::int32_t y) const {
    return plane + std::ptrdiff_t{y} * kStride;
  }
};

// A picture's plane, in numbers of a buffer.
struct PicturePlane {
  const ImageRec* source;
  std::uint32_t channelBit;
  EmphasisCurve curve;  // off where the plane has none

  // Rows y to y + count - 1, eight at most.
  void Fill(const FastFrame& frame, std::int32_t y, std::int32_t count, double* buffer) const;
};

// One stored channel.
struct ChannelPlane {
  const ImageRec* source;
  std::int32_t channel;
  ChannelGamma gamma;

  void Fill(const FastFrame& frame, std::int32_t y, std::int32_t count, double* buffer) const;
};

// Rows of planes, each into its plane of row spectra. Asks before every row of every plane; rows
// that a cancel keeps it from become zeros.
template <class Plane>
struct ForwardPass {
  struct Each {
    Plane from;
    double* to;  // null where the rows are only asked for
  };

  FastFrame frame;
  std::array<Each, FastLayout::kPlanes> planes;
  std::size_t count;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// Where a plane of a finished picture comes from.
struct FinishedPlane {
  double* spectra = nullptr;     // of rows
  const double* rows = nullptr;  // or finished rows of the frame's width
  double even = 0.0;             // or one value all over
  EmphasisCurve curve{};         // to be undone
};

// Planes into rows of a picture.
struct PicturePass {
  FastFrame frame;
  std::array<FinishedPlane, FastLayout::kPlanes> planes;
  bool withAlpha;  // else the picture's alpha stays as it is
  ImageRec* dest;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// A plane into one stored channel of a picture.
struct ChannelPass {
  FastFrame frame;
  double* spectra;
  std::int32_t channel;
  ChannelGamma gamma;
  ImageRec* dest;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// Puts the columns beside the frame into a buffer whose first numbers are the frame's, transforms
// the rows, and spreads them.
void TransformRows(const FastFrame& frame, std::int32_t count, double* buffer, double* to);

// Gathers rows of spectra and transforms them back.
void TransformRowsBack(const FastFrame& frame, const double* from, std::int32_t count,
                       double* buffer);

}  // namespace lx
