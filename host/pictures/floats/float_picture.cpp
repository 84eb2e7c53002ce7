// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/floats/float_picture.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

#include "host/pictures/channels.h"
#include "host/pictures/floats/float_samples.h"

namespace glimmerhost {
namespace {

constexpr float kOne = 65535.0F;

}  // namespace

void MakeFloat(Picture* picture) {
  if (picture->IsFloat()) {
    return;
  }
  picture->floats.resize(picture->samples.size());
  std::transform(picture->samples.begin(), picture->samples.end(), picture->floats.begin(),
                 [](std::uint16_t sample) { return static_cast<float>(sample) / kOne; });
  picture->samples = {};
}

Picture Quantised(const Picture& picture, std::uint64_t* cut) {
  Picture words;
  words.width = picture.width;
  words.height = picture.height;
  words.alpha = picture.alpha;
  words.grey = picture.grey;
  words.bits = picture.bits;
  words.pixelAspect = picture.pixelAspect;
  words.grownBy = picture.grownBy;
  words.colours = picture.colours;
  words.metadata = picture.metadata;
  words.attributes = picture.attributes;
  words.extras = picture.extras;
  words.samples.resize(picture.floats.size());
  std::transform(
      picture.floats.begin(), picture.floats.end(), words.samples.begin(), [cut](float value) {
        *cut += IsCutToUnit(value) ? 1U : 0U;
        return static_cast<std::uint16_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * kOne));
      });
  return words;
}

std::vector<float> GatherFloats(const Picture& picture, int channels) {
  return GatherFloatRows(picture, channels, 0, picture.height);
}

std::vector<float> GatherFloatRows(const Picture& picture, int channels, int firstRow, int rows) {
  const auto width = static_cast<std::size_t>(picture.width);
  const std::size_t count = static_cast<std::size_t>(rows) * width;
  const auto perPixel = static_cast<std::size_t>(channels);
  if (!picture.IsFloat()) {
    std::vector<std::uint16_t> samples(count * perPixel);
    GatherRows(picture, channels, firstRow, rows, samples.data());
    return ToFloats(samples, channels, picture.range);
  }
  std::vector<float> values(count * perPixel);
  const float* from = picture.floats.data() + static_cast<std::size_t>(firstRow) * width * 4;
  float* to = values.data();
  for (std::size_t i = 0; i < count; ++i, from += 4, to += perPixel) {
    if (channels < 3) {
      to[0] = static_cast<float>((double{from[0]} + from[1] + from[2]) / 3.0);
    } else {
      std::copy_n(from, 3, to);
    }
    if (channels % 2 == 0) {
      to[perPixel - 1] = from[3];
    }
  }
  return values;
}

bool IsCutToUnit(float value) {
  constexpr float kRounding = 0.001F;
  return value < -kRounding || value > 1.0F + kRounding;
}

std::uint64_t CutToHalf(std::vector<float>* values) {
  constexpr float kLargest = 65504.0F;
  std::uint64_t cut = 0;
  for (float& value : *values) {
    const float held = std::clamp(value, -kLargest, kLargest);
    cut += held != value ? 1U : 0U;
    value = held;
  }
  return cut;
}

}  // namespace glimmerhost
