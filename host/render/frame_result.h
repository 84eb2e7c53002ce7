// SPDX-License-Identifier: BSD-3-Clause
// What is seen of the effect's result, in the place of the samples that it was made from.
#pragma once

#include <vector>

#include "host/module/frame_renderer.h"
#include "host/pictures/picture.h"

namespace glimmerhost {

// How much of the result is seen, and where.
struct SeenPart {
  double mix = 1.0;               // 0 to 1
  const Picture* mask = nullptr;  // as large as the picture; null for everywhere
};

// Of the module's result. False, with the picture's own samples, which have not passed the border,
// if the aperture holds nothing. Throws as CheckRendered does.
bool TakeWords(const FrameInput& input, FrameImage* result, const SeenPart& seen, Picture* picture);

// Of the library's, whose samples are moved from. False likewise, without what rounding does.
bool TakeFloats(const FrameInput& input, std::vector<float>* result, const SeenPart& seen,
                Picture* picture);

// The same where it is known that the aperture holds something.
void TakeSeenFloats(std::vector<float>* result, const SeenPart& seen, Picture* picture);

}  // namespace glimmerhost
