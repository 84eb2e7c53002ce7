// SPDX-License-Identifier: BSD-3-Clause
#include "host/looks/foresight.h"

#include <algorithm>

#include "baselib/utils/convert.h"
#include "host/looks/keys.h"

namespace glimmerhost {
namespace {

// Five frames may be on their way, at one of them the effect: each is a picture and its source, and
// from the effect on a result. The spread, and what is decoded and encoded, are about two more. A
// shot of 1920x1080 was seen to take 15 in all.
std::uint64_t PictureBytes(int width, int height) {
  constexpr std::uint64_t kCopies = 16;
  constexpr std::uint64_t kPixel = 8;
  return kCopies * kPixel * static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
}

}  // namespace

// The effect keeps radii as floats, so one a trace above a whole number counts as that.
double ApertureRadius(const std::map<std::string, Value>& values, int width) {
  const Shape shape = ShapeOf(values);
  const auto pixels = [&](const char* key) {
    return lx::NarrowToFloat(std::get<double>(values.at(key)) * width * 0.5);
  };
  if (shape == Shape::kImage) {
    const auto [inner, outer] = std::minmax({pixels(kRadiusPsf1Key), pixels(kRadiusPsf2Key)});
    // The soft edge is at least a pixel wide.
    return double{inner} + std::max(lx::NarrowToFloat(double{outer} - inner), 1.0F);
  }
  const bool xOnly =
      shape == Shape::kCircle || (shape == Shape::kPolygon && std::get<bool>(values.at(kMatchKey)));
  const float x = pixels(kRadiusXKey);
  return std::max({x, xOnly ? x : pixels(kRadiusYKey), 0.5F});
}

Foresight Foresee(const lx::Footprint& engine, const std::map<std::string, Value>& values,
                  int width, int height) {
  Foresight foresight;
  foresight.radius = ApertureRadius(values, width);
  foresight.pictureBytes = PictureBytes(width, height);
  const lx::GridSides grid = engine.gridFor(width, height, lx::OutlineMargin(foresight.radius));
  if (lx::IsAllowedGrid(grid, engine.largestSide)) {
    foresight.grid = grid;
    foresight.effectBytes = engine.bytesAt({width, height}, grid);
  }
  return foresight;
}

GridStep NextGrid(const lx::Footprint& engine, const lx::GridSides& grid, int width, int height) {
  std::int32_t margin = 0;
  while (engine.gridFor(width, height, margin + 1).FitsInto(grid)) {
    ++margin;
  }
  const lx::GridSides next = engine.gridFor(width, height, margin + 1);
  // A margin is a radius and one pixel.
  return {margin - 1, lx::IsAllowedGrid(next, engine.largestSide) ? next : lx::GridSides{}};
}

}  // namespace glimmerhost
