// SPDX-License-Identifier: BSD-3-Clause
// The aperture as a mask: drawn, or cut out of a picture.
#pragma once

#include <cstdint>
#include <memory>
#include <vector>

#include "doors/library/box.h"
#include "doors/library/frame_view.h"
#include "imagelib/imagelib.h"

namespace lx {

// A mask that ends where its weights do. Row 0 is the lowest.
struct ApertureMask {
  std::int32_t left = 0;    // of its first pixel, from the aperture's middle
  std::int32_t bottom = 0;  // of its first row
  std::int32_t width = 1;
  std::int32_t height = 1;
  std::vector<std::uint8_t> weights{255};

  // Pixel x comes from x - left and what lies on either side, so it reads the other way round.
  Reach4 Reach() const;
};

// A picture that is kept as an aperture.
struct AperturePicture {
  std::int32_t width = 0;
  std::int32_t height = 0;
  std::vector<std::uint16_t> samples;  // row 0 is the lowest
  bool isWhole = true;                 // else the disc of:
  std::int32_t centreX = 0;
  std::int32_t centreY = 0;  // from the bottom
  float inner = 0.0F;
  float outer = 0.0F;
};

// Keeps the first channel.
//   centreX, centreY, inner, outer  as glimmerblur_set_aperture has them
AperturePicture TakePicture(const FrameView& picture, double centreX, double centreY, double inner,
                            double outer);

// Draws the look's aperture. Throws a Refusal where it is too large to be drawn.
//   picture        of GLIMMERBLUR_PICTURE
//   width, height  of the whole picture, which matters to apertures that are not centred alone
ApertureMask DrawAperture(const glimmerblur_look& look, const AperturePicture* picture,
                          std::int32_t width, std::int32_t height);

}  // namespace lx
