// SPDX-License-Identifier: BSD-3-Clause
// The row passes of this back-end. Grids are square, of doubles; a pass writes only its own rows.
#pragma once

#include <cstdint>

#include "fftlib/core/rows.h"
#include "fftlib/core/run.h"
#include "fftlib/planes/channel_rows.h"
#include "fftlib/planes/emphasis_curve.h"
#include "imagelib/imagelib.h"

namespace lx {

// A mask into the frame's rectangle of a grid, and nothing else of it.
struct MaskInput {
  const ImageRec* mask;  // 8-bit, one channel
  GridPlace place;
  double* grid;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// One plane of source rows into grid rows, margins included. What the grid holds of the plane
// before goes to kept first: a pass does it, row by row before a row is overwritten, because every
// way can then take part.
struct PlaneInput {
  const ImageRec* source;
  GridPlace place;
  std::uint32_t channelBit;
  EmphasisCurve curve;  // off where the plane has none
  std::int32_t edgeMode;
  double* grid;
  double* kept;  // only the frame's rectangle; null keeps nothing

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// The frame's rectangle of a grid, of which the output reads nothing else, into another.
void KeepRows(const double* grid, const GridPlace& place, std::int32_t first, std::int32_t last,
              double* kept);

// psf times work into work, a row of a spectrum at a time. It has no cancel poll.
struct MultiplySpectra {
  const double (*psf)[2];
  double (*work)[2];
  std::int32_t count;  // complex numbers in a row

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// The three result planes, and alpha, into rows of a picture.
struct PictureOutput {
  const double* luma;
  const double* cr;
  const double* cb;
  const double* alpha;  // null leaves the picture's alpha as it is
  GridPlace place;
  EmphasisCurve curve;
  bool curveOfAlpha;
  ImageRec* dest;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// One stored channel of source rows into grid rows.
struct ChannelInput {
  const ImageRec* source;
  GridPlace place;
  std::int32_t channel;
  ChannelGamma gamma;
  std::int32_t edgeMode;
  double* grid;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// A grid into one stored channel of a picture.
struct ChannelOutput {
  const double* grid;
  GridPlace place;
  std::int32_t channel;
  ChannelGamma gamma;
  ImageRec* dest;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

}  // namespace lx
