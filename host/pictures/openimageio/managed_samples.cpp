// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/openimageio/managed_samples.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>

#include "host/pictures/colour_path.h"
#include "host/pictures/floats/float_picture.h"
#include "host/pictures/floats/float_samples.h"

namespace glimmerhost {

void SpreadManaged(const std::filesystem::path& file, const std::vector<float>& from, int channels,
                   const ChannelMap& map, const ReadOptions& options, bool ofFloats,
                   Picture* picture, ReadReport* report) {
  const int picked = map.alpha < 0 ? 3 : 4;
  std::vector<float> pixels;
  pixels.reserve(picture->PixelCount() * static_cast<std::size_t>(picked));
  const float* pixel = from.data();
  for (std::size_t i = 0; i < picture->PixelCount(); ++i, pixel += channels) {
    pixels.insert(pixels.end(), {pixel[map.red], pixel[map.green], pixel[map.blue]});
    if (map.alpha >= 0) {
      pixels.push_back(pixel[map.alpha]);
    }
  }
  if (options.colours->in) {
    TransformColours(*options.colours->in, picture->alpha, &pixels);
  }
  picture->grey = false;
  picture->colours = options.colours;
  SpreadFloats(file, pixels, picked, MapPlainChannels(picked),
               {options.KeepsFloats(ofFloats), options.range}, picture, report);
}

std::vector<float> ManagedFloats(const Picture& picture, bool withAlpha) {
  const int channels = picture.alpha == Alpha::kNone ? 3 : 4;
  std::vector<float> values = GatherFloats(picture, channels);
  if (picture.colours->out) {
    TransformColours(*picture.colours->out, picture.alpha, &values);
  }
  // What a transform has no number for; the samples of a file may hold less, and cut themselves.
  constexpr float kLargest = std::numeric_limits<float>::max();
  for (float& value : values) {
    value = std::isnan(value) ? 0.0F : std::clamp(value, -kLargest, kLargest);
  }
  if (channels == 4 && !withAlpha) {
    for (std::size_t i = 0; i < picture.PixelCount(); ++i) {
      std::copy_n(values.begin() + static_cast<std::ptrdiff_t>(i * 4), 3,
                  values.begin() + static_cast<std::ptrdiff_t>(i * 3));
    }
    values.resize(picture.PixelCount() * 3);
  }
  return values;
}

std::vector<std::uint16_t> CutToWords(const std::vector<float>& values, std::uint64_t* cut) {
  constexpr float kOne = 65535.0F;
  std::vector<std::uint16_t> words(values.size());
  for (std::size_t i = 0; i < values.size(); ++i) {
    const float value = values[i];
    // A range and a transform make more of the effect's rounding.
    *cut += IsCutToUnit(value) ? 1U : 0U;
    words[i] = static_cast<std::uint16_t>(std::lround(std::clamp(value, 0.0F, 1.0F) * kOne));
  }
  return words;
}

}  // namespace glimmerhost
