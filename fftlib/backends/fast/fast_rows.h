// SPDX-License-Identifier: BSD-3-Clause
// The row passes of this back-end, eight rows at a time: from pictures to planes of row spectra and
// back. A pass writes only its own rows.
#pragma once

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

#include "fftlib/backends/fast/fast_grids.h"
#include "fftlib/core/rows.h"
#include "fftlib/core/run.h"
#include "fftlib/planes/channel_rows.h"
#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/picture_rows.h"
#include "imagelib/imagelib.h"

namespace lx {

// What all passes of a frame work in.
struct FastFrame {
  FastGrids* grids;
  const LineOperations* operations;
  std::int32_t edgeMode;
  std::int32_t before;  // columns that the aperture needs to the left of the frame

  // Eight rows of a plane at the first of them.
  double* RowsOf(double* plane, std::int32_t y) const {
    return plane + std::ptrdiff_t{y} * kStride;
  }
};

// A picture's plane.
struct PicturePlane {
  const ImageRec* source;
  std::uint32_t channelBit;
  EmphasisCurve curve;  // off where the plane has none
};

// One stored channel.
struct ChannelPlane {
  const ImageRec* source;
  std::int32_t channel;
  ChannelGamma gamma;
};

// Numbers of up to four planes of one source into buffers, of the rows y to y + count - 1, eight at
// most; a null buffer is left out.
void FillBuffers(const FastFrame& frame, std::span<const PicturePlane> planes, std::int32_t y,
                 std::int32_t count, const PlaneBuffers& buffers);
void FillBuffers(const FastFrame& frame, std::span<const ChannelPlane> planes, std::int32_t y,
                 std::int32_t count, const PlaneBuffers& buffers);

// Rows of planes, each into its plane of row spectra. Asks before every row of every plane; rows
// that a cancel keeps it from become zeros.
template <class Plane>
struct ForwardPass {
  FastFrame frame;
  std::size_t count = 0;
  std::array<Plane, FastLayout::kPlanes> from{};
  PlaneBuffers to{};  // null where the rows are only asked for

  void Add(const Plane& plane, double* spectra) {
    from[count] = plane;
    to[count++] = spectra;
  }
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
  std::size_t count;  // of them: 4 with alpha, which else stays as it is; 1 of a single channel
  ImageRec* dest;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;

 private:
  void StoreByPieces(const PlaneBuffers& buffers, std::int32_t y, std::int32_t rows) const;
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

// Of eight rows of doubles, so that what goes between rows and lanes stays at hand. One word of
// bits.
inline constexpr std::int32_t kPiece = 64;
inline constexpr std::int32_t kPieces = kLines * kPiece;

// Calls function(y, count) for the rows first to last, eight at a time.
template <class Function>
void EachEight(std::int32_t first, std::int32_t last, Function function) {
  for (std::int32_t y = first; y <= last; y += kLines) {
    function(y, std::min(kLines, last - y + 1));
  }
}

// Asks before each of count rows, up to the first refusal; how many may be worked on.
std::int32_t AskFor(const Rows& rows, std::int32_t count);

// Calls fill(piece, row) for all pieces of count rows from y on, and packs them. Rows behind count
// are zeros.
template <class Fill>
void PackRows(const FastFrame& frame, std::int32_t y, std::int32_t count, double* buffer,
              Fill fill) {
  double rows[kPieces];
  std::fill(rows + count * kPiece, rows + kPieces, 0.0);
  const std::int32_t width = frame.grids->Layout().frame.width;
  for (std::int32_t x = 0; x < width; x += kPiece) {
    const std::int32_t pixels = std::min(kPiece, width - x);
    for (std::int32_t r = 0; r < count; ++r) {
      fill(RowPiece{x, y + r, pixels}, rows + r * kPiece);
    }
    frame.operations->pack(rows, kPiece, pixels, buffer + std::ptrdiff_t{x} * kLines);
  }
}

// Unpacks them and calls take(piece, row) for all pieces.
template <class Take>
void UnpackRows(const FastFrame& frame, const double* buffer, std::int32_t y, std::int32_t count,
                Take take) {
  double rows[kPieces];
  const std::int32_t width = frame.grids->Layout().frame.width;
  for (std::int32_t x = 0; x < width; x += kPiece) {
    const std::int32_t pixels = std::min(kPiece, width - x);
    frame.operations->unpack(buffer + std::ptrdiff_t{x} * kLines, kPiece, pixels, rows);
    for (std::int32_t r = 0; r < count; ++r) {
      take(RowPiece{x, y + r, pixels}, rows + r * kPiece);
    }
  }
}

// Puts the columns beside the frame into a buffer whose first numbers are the frame's, transforms
// the rows, and spreads them.
void TransformRows(const FastFrame& frame, std::int32_t count, double* buffer, double* to);

// Gathers rows of spectra and transforms them back.
void TransformRowsBack(const FastFrame& frame, const double* from, std::int32_t count,
                       double* buffer);

}  // namespace lx
