// SPDX-License-Identifier: BSD-3-Clause
// What a back-end is: the way from a mask to a PSF, and from frames to blurred frames.
//
// It holds one grid and one PSF, and serves one thread at a time. The engine in front of it checks
// arguments, keeps to the order of calls and owns the mask; a back-end is told only what it can do.
// It works through passes of Rows, and answers with a status, kStatusOk being success. What failed
// half-way may leave grids, but no PSF that a run would take for a whole one.
//
// The interface is coarse: how rows are laid out, which are transformed, and in what order
// frequencies lie, is a back-end's own affair. Nothing here is called per row.
#pragma once

#include <cstdint>
#include <string_view>

#include "fftlib/backends/transform_library.h"
#include "fftlib/core/rows.h"
#include "fftlib/core/run.h"
#include "imagelib/imagelib.h"

namespace lx {

class Backend {
 public:
  Backend() = default;
  virtual ~Backend() = default;
  Backend(const Backend&) = delete;
  Backend& operator=(const Backend&) = delete;

  // As the list has it.
  virtual std::string_view Name() const = 0;

  // The grid for a frame that is padded by margin pixels on each side; a margin below 0 counts as
  // 0. A side may come out above what a grid can have, which the engine refuses.
  virtual GridSides GridFor(Size frame, std::int32_t margin) const = 0;

  // The grid for a mask: that of its size, unless the mask reaches beyond the margin and the
  // back-end would rather make room.
  virtual GridSides GridOf(const ImageRec& mask, std::int32_t margin) const {
    return GridFor({mask.width, mask.height}, margin);
  }

  // What all buffers of a grid come to, once PSF and frames of that size have been through it.
  virtual std::uint64_t BytesAt(Size frame, const GridSides& grid) const = 0;

  // Makes the PSF of a mask, in a grid of place.grid. The grid has the size of the load before,
  // whose buffers it may keep, unless FreeGrids came between.
  //   mask  of place.frame's size, with samples; not kept
  virtual std::int32_t Load(const ImageRec& mask, const GridPlace& place, Rows* rows) = 0;

  // Frees what is bound to a grid's size. No PSF is loaded then.
  virtual void FreeGrids() = 0;

  // Whether there is a PSF to run with.
  virtual bool IsLoaded() const = 0;

  // What the engine decides by.
  //   keepsMask    a load that failed leaves the engine with the mask as its PSF
  //   takesFloat   Convolve accepts float images
  //   largestSide  of a grid
  struct Rules {
    bool keepsMask;
    bool takesFloat;
    std::int32_t largestSide;
  };
  virtual Rules GetRules() const = 0;

  // Blurs a picture as luma, two chroma planes and alpha. Both images have three channels or more,
  // and the mask has all bits of colour. Whoever takes floats takes those of a single channel, too,
  // as a luma of its own.
  virtual std::int32_t Convolve(const RunImages& run, const Look& look, Rows* rows) = 0;

  // Blurs stored channels one by one.
  virtual std::int32_t ConvolveChannels(const RunImages& run, const Look& look, const Gamma& gamma,
                                        Rows* rows) = 0;

  // Null where the transforms are our own.
  virtual TransformLibrary* Library() { return nullptr; }
};

}  // namespace lx
