// SPDX-License-Identifier: BSD-3-Clause
// Between a frame and what the effect has made of it.
//
//   result = frame + (blurred - frame) * mix * mask
//
// sample by sample, alpha too. All samples are as the effect has them: premultiplied, unless it is
// told otherwise.
#pragma once

#include <cstdint>
#include <vector>

#include "host/pictures/picture.h"

namespace glimmerhost {

// To the nearest, a half upwards.
//   weight  0 to 1; 0 gives the frame's sample and 1 the blurred one
std::uint16_t Mixed(std::uint16_t frame, std::uint16_t blurred, double weight);

// Mixes a frame's samples into the blurred ones, four a pixel.
//   mix   0 to 1
//   mask  as many pixels as the frame, of 16 bits, of which the first channel counts; null for 1
//         everywhere
void MixSamples(const std::vector<std::uint16_t>& frame, double mix, const Picture* mask,
                std::vector<std::uint16_t>* blurred);

// The same of floats, which are not rounded to steps.
void MixFloats(const std::vector<float>& frame, double mix, const Picture* mask,
               std::vector<float>* blurred);

}  // namespace glimmerhost
