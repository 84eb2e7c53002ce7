// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/colour_path.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace glimmerhost {
namespace {

// A matrix makes of the largest floats what is infinite, and of that what is no number.
constexpr float kLargest = 0x1p100F;

bool IsBlack(const float* colour) {
  return std::all_of(colour, colour + 3, [](float v) { return v == 0.0F; });
}

// What a pixel's colours are divided by before, and multiplied by after.
float Coverage(Alpha alpha, const float* pixel) {
  return alpha == Alpha::kPremultiplied && pixel[3] > 0.0F ? std::min(pixel[3], 1.0F) : 1.0F;
}

}  // namespace

void TransformColours(const ColourTransform& transform, Alpha alpha, std::vector<float>* pixels) {
  const std::size_t channels = alpha == Alpha::kNone ? 3 : 4;
  const std::size_t count = pixels->size() / channels;
  std::vector<float> colours(count * 3);
  for (std::size_t i = 0; i < count; ++i) {
    const float* const pixel = pixels->data() + i * channels;
    const float coverage = Coverage(alpha, pixel);
    for (std::size_t c = 0; c < 3; ++c) {
      const float value = pixel[c] / coverage;
      colours[i * 3 + c] = std::isfinite(pixel[c]) ? std::clamp(value, -kLargest, kLargest) : 0.0F;
    }
  }
  transform.Apply(&colours);
  for (std::size_t i = 0; i < count; ++i) {
    float* const pixel = pixels->data() + i * channels;
    if (alpha == Alpha::kPremultiplied && !(pixel[3] > 0.0F) && IsBlack(pixel)) {
      continue;  // outside of everything; a transform may make grey of black
    }
    const float coverage = Coverage(alpha, pixel);
    for (std::size_t c = 0; c < 3; ++c) {
      pixel[c] = std::isfinite(pixel[c]) ? colours[i * 3 + c] * coverage : pixel[c];
    }
  }
}

}  // namespace glimmerhost
