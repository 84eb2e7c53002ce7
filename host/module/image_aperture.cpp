// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/image_aperture.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <variant>

#include "baselib/utils/convert.h"
#include "baselib/utils/distance.h"
#include "host/looks/keys.h"

namespace glimmerhost {
namespace {

// In pixels, the centre's row counted from the bottom.
struct Disc {
  std::int64_t centreX;
  std::int64_t centreY;
  double inner;
  double falloff;
};

Disc DiscOf(const std::map<std::string, Value>& values, quantel::cSize2 size) {
  const auto number = [&](const char* key) { return std::get<double>(values.at(key)); };
  // A radius of the store is a diameter as a part of the width.
  const double first = number(kRadiusPsf1Key) * size.first * 0.5;
  const double second = number(kRadiusPsf2Key) * size.first * 0.5;
  const double inner = std::min(first, second);
  return {lx::TruncateToInt32(number(kCenterXKey) * size.first + 0.5),
          lx::TruncateToInt32(number(kCenterYKey) * size.second + 0.5), inner,
          std::max(std::max(first, second) - inner, 1.0)};
}

// Of 255.
int WeightOf(std::uint16_t red, const Disc& disc, std::int64_t x, std::int64_t y) {
  const double distance = lx::DistanceOf(static_cast<double>(x), static_cast<double>(y));
  const double fallen = std::clamp((distance - disc.inner) / disc.falloff, 0.0, 1.0);
  return static_cast<int>((red >> 8U) * (1.0 - fallen));
}

// What is moved beyond the frame with the disc's centre is lost.
bool IsInside(std::int64_t fromCentre, int length) {
  const std::int64_t place = fromCentre + length / 2;
  return place >= 0 && place < length;
}

}  // namespace

ImageAperture ApertureFrom(FrameImage* picture, const std::map<std::string, Value>& values) {
  constexpr std::size_t kRed = 2;  // at the border blue comes first
  const quantel::cSize2 size = picture->size();
  const Disc disc = DiscOf(values, size);
  int weakest = 255;
  int strongest = 0;
  double sum = 0.0;
  const std::uint16_t* pixel = picture->buffer();
  for (int row = 0; row < size.second; ++row) {
    const std::int64_t y = size.second - 1 - row - disc.centreY;
    for (int column = 0; column < size.first; ++column, pixel += 4) {
      const std::int64_t x = column - disc.centreX;
      const bool isInside = IsInside(x, size.first) && IsInside(y, size.second);
      const int weight = isInside ? WeightOf(pixel[kRed], disc, x, y) : 0;
      weakest = std::min(weakest, weight);
      strongest = std::max(strongest, weight);
      sum += weight;
    }
  }
  if (weakest == strongest) {
    return {};
  }
  return {false, 1.0 - strongest / sum};
}

}  // namespace glimmerhost
