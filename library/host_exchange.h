// SPDX-License-Identifier: BSD-3-Clause
// Frames across the host's border.
//
//   host frame                     LXImage
//   top row first                  bottom row first
//   blue, green, red, alpha        red, green, blue, alpha
//   16 bits                        15 bits; the lowest bit is lost on the way in
#pragma once

#include "hostframe/interfaces/pictures.h"
#include "hostframe/interfaces/ptr.h"
#include "library/lx_image.h"

namespace lx {

// Reads a host frame. Lets go of the frame before it returns.
//   target  null for a new image, which then belongs to the caller; else an image of the
//           frame's size, which is filled and given back
// Null for a null frame, and for a target of another size. Throws std::bad_alloc where
// memory has run out.
LXImage* ConvertFromQTL(quantel::cPtr<qplugin::iQpluginImage> frame, LXImage* target);

// Writes an image into a host frame of at least its size. Lets go of the frame before it
// returns. A null image leaves the frame as it is and tells the user.
void ConvertToQTL(const LXImage* image, quantel::cPtr<qplugin::iQpluginImage> frame);

}  // namespace lx
