// SPDX-License-Identifier: BSD-3-Clause
// A soft disc cut out of a picture becomes a PSF mask.
#pragma once

#include <cstdint>

#include "imagelib/imagelib.h"

namespace lx {

// Where the disc is cut, in pixels of the picture.
struct MaskDisc {
  std::int32_t centreX;  // may lie outside
  std::int32_t centreY;
  float innerRadius;  // full weight up to here
  float falloff;      // from there to weight 0; above 0
};

// Copies the disc's first channel, as 8 bits, so that its centre comes to the middle of the mask.
// A disc in which all is of one value becomes an impulse.
//   image  any integer sample type
//   mask   of the image's size, 8-bit, one channel, cleared
void CutImageMask(const ImageRec& image, const MaskDisc& disc, ImageRec* mask);

}  // namespace lx
