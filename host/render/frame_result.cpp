// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/frame_result.h"

#include <cstdint>
#include <utility>

#include "host/module/frame_checks.h"
#include "host/render/mix.h"

namespace glimmerhost {
namespace {

bool IsAllSeen(const SeenPart& seen) { return seen.mix >= 1.0 && seen.mask == nullptr; }

}  // namespace

bool TakeWords(const FrameInput& input, FrameImage* result, const SeenPart& seen,
               Picture* picture) {
  if (!CheckRendered(input, result)) {
    return false;
  }
  if (IsAllSeen(seen)) {
    result->CopyTo(picture);
  } else {
    const std::vector<std::uint16_t> frame = std::move(picture->samples);
    result->CopyTo(picture);
    MixSamples(frame, seen.mix, seen.mask, &picture->samples);
  }
  return true;
}

bool TakeFloats(const FrameInput& input, std::vector<float>* result, const SeenPart& seen,
                Picture* picture) {
  if (StayedAsItWas(input, *picture, *result)) {
    return false;
  }
  TakeSeenFloats(result, seen, picture);
  return true;
}

void TakeSeenFloats(std::vector<float>* result, const SeenPart& seen, Picture* picture) {
  if (!IsAllSeen(seen)) {
    MixFloats(picture->floats, seen.mix, seen.mask, result);
  }
  picture->floats = std::move(*result);
}

}  // namespace glimmerhost
