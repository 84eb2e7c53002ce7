#include "host/glimmerhost/foresight.h"

#include <algorithm>
#include <bit>
#include <cmath>

namespace glimmerhost {
namespace {

// The longest side of the effect's padded grid, in pixels.
constexpr int kLargestGrid = 8192;

// Five planes of doubles and two spectra of half a grid and one column.
std::uint64_t EffectBytes(int grid) {
  const auto side = static_cast<std::uint64_t>(grid);
  constexpr std::uint64_t kDouble = 8;
  return 5 * side * side * kDouble + 2 * side * (side / 2 + 1) * 2 * kDouble;
}

// Five frames may be on their way, at one of them the effect: each is a picture and its source, and
// from the effect on a result. The spread, and what is decoded and encoded, are about two more. A
// shot of 1920x1080 was seen to take 15 in all.
std::uint64_t PictureBytes(int width, int height) {
  constexpr std::uint64_t kCopies = 16;
  constexpr std::uint64_t kPixel = 8;
  return kCopies * kPixel * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
}

}  // namespace

double ApertureRadius(const std::map<std::string, Value>& values, int width) {
  constexpr int kCircle = 0;
  constexpr int kPolygon = 2;
  constexpr int kImage = 3;
  const int shape = std::get<int>(values.at("PRM_Shape"));
  const auto pixels = [&](const char* key) {
    return std::get<double>(values.at(key)) * width * 0.5;
  };
  if (shape == kImage) {
    const double first = pixels("PRM_RadiusPSF1");
    const double second = pixels("PRM_RadiusPSF2");
    // The soft edge is at least a pixel wide.
    return std::max(std::max(first, second), std::min(first, second) + 1.0);
  }
  const bool xOnly =
      shape == kCircle || (shape == kPolygon && std::get<bool>(values.at("PRM_Match")));
  const double x = pixels("PRM_RadiusX");
  return std::max({x, xOnly ? x : pixels("PRM_RadiusY"), 0.5});
}

Foresight Foresee(const std::map<std::string, Value>& values, int width, int height) {
  Foresight foresight;
  foresight.radius = ApertureRadius(values, width);
  foresight.pictureBytes = PictureBytes(width, height);
  const double side = std::max(width, height) + 2.0 * (std::ceil(foresight.radius) + 1.0);
  if (side <= kLargestGrid) {
    foresight.grid = static_cast<int>(std::bit_ceil(static_cast<unsigned>(side)));
    foresight.effectBytes = EffectBytes(foresight.grid);
  }
  return foresight;
}

int LargestRadius(int grid, int width, int height) {
  return (grid - std::max(width, height)) / 2 - 1;
}

}  // namespace glimmerhost
