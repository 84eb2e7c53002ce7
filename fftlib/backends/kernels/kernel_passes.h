// SPDX-License-Identifier: BSD-3-Clause
// The passes of this back-end between pictures and grids of complex samples. T, float or double,
// is what these are made of; each pass writes only its own rows.
#pragma once

#include <cstdint>

#include "fftlib/core/rows.h"
#include "fftlib/core/run.h"
#include "fftlib/lines/complex_grid.h"
#include "imagelib/imagelib.h"

namespace lx {

// A mask's first channel into the frame's rectangle, and nothing else of the grid.
template <class T>
struct KernelMaskInput {
  const ImageRec* mask;  // of any sample type
  GridPlace place;
  ComplexGrid<T> grid;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// One plane of source rows, with what the edge mode adds to them. What the grid holds of the plane
// before goes to kept first, row by row before a row is overwritten.
template <class T>
struct KernelPlaneInput {
  const ImageRec* source;
  GridPlace place;
  std::uint32_t channelBit;
  Look look;
  ComplexGrid<T> grid;
  ComplexGrid<T> kept;  // only the frame's rectangle; without samples keeps nothing

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// The frame's rectangle of a grid into another.
template <class T>
void KeepKernelRows(const ComplexGrid<T>& grid, const GridPlace& place, std::int32_t first,
                    std::int32_t last, const ComplexGrid<T>& kept);

// One stored channel of source rows, as raw numbers.
template <class T>
struct KernelChannelInput {
  const ImageRec* source;
  GridPlace place;
  std::int32_t channel;
  std::int32_t edgeMode;
  ComplexGrid<T> grid;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// The three result planes, and alpha, into rows of a picture.
template <class T>
struct KernelPictureOutput {
  ComplexGrid<T> luma;
  ComplexGrid<T> cr;
  ComplexGrid<T> cb;
  ComplexGrid<T> alpha;
  GridPlace place;
  bool withAlpha;  // else the picture's alpha stays as it is
  Look look;
  ImageRec* dest;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// A grid into one stored channel of a picture.
template <class T>
struct KernelChannelOutput {
  ComplexGrid<T> grid;
  GridPlace place;
  std::int32_t channel;
  ImageRec* dest;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

}  // namespace lx
