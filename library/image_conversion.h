// SPDX-License-Identifier: BSD-3-Clause
// Between the two image types: LXImage with 15-bit samples, ImageRec with full ones.
// Channels keep their order. A false result leaves the destination as it was.
#pragma once

#include "imagelib/imagelib.h"
#include "library/lx_image.h"

namespace lx {

// A new record of 4 channels of 16 bits, to be freed with ImageFree. Null for null, for
// sides that a record cannot have, and where memory has run out.
ImageRec* ImageFromLX(const LXImage* image);

// Into a record of 4 channels and the same size: 16-bit samples are doubled, float
// samples become 0..1. False for any other record.
bool ImageCopyFromLX(ImageRec* destination, const LXImage* source);

// From a record of 3 or 4 channels of 8 or 16 bits and the same size; 3 channels get an
// opaque alpha. False for any other record.
bool ImageToLX(const ImageRec* source, LXImage* destination);

}  // namespace lx
