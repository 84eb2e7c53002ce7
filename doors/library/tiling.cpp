// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/tiling.h"

#include <algorithm>
#include <limits>
#include <string>

#include "doors/library/refusal.h"

namespace lx {
namespace {

constexpr std::uint64_t kGridsOfATile = std::uint64_t{64} << 20U;
constexpr std::uint64_t kLargestBlock = std::numeric_limits<std::int32_t>::max();
constexpr std::int32_t kSmallestTile = 16;
constexpr std::int32_t kLargestImageSide = 65535;

// A tile's work box in the engine's grid.
struct Fit {
  bool isPossible = false;
  GridPlace place;
  std::uint64_t gridBytes = 0;
  std::uint64_t bytes = 0;
};

Fit FitOf(const Box& work, const Reach4& reach, const Footprint& engine, const TileLimits& limits) {
  Fit fit;
  // A margin stands on both sides, so half of what is reached is enough.
  const auto half = [](std::int32_t one, std::int32_t other) { return (one + other + 1) / 2; };
  const GridSides sides =
      engine.gridFor(work.width, work.height,
                     std::max(half(reach.left, reach.right), half(reach.below, reach.above)));
  if (!IsAllowedGrid(sides, engine.largestSide) || work.width > kLargestImageSide ||
      work.height > kLargestImageSide) {
    return fit;
  }
  const Size frame{work.width, work.height};
  const std::uint64_t picture = static_cast<std::uint64_t>(work.Pixels()) *
                                static_cast<std::uint64_t>(limits.channels * limits.sampleBytes);
  // No block of the engine is larger than the grid in complex numbers, or than all of them.
  const std::uint64_t block = static_cast<std::uint64_t>(sides.width / 2 + 8) *
                              static_cast<std::uint64_t>(sides.height) * 16;
  fit.place = PlaceFrame(
      frame, {static_cast<std::int32_t>(sides.width), static_cast<std::int32_t>(sides.height)});
  fit.gridBytes = engine.bytesAt(frame, sides);
  fit.bytes = fit.gridBytes + picture;
  fit.isPossible = picture <= kLargestBlock && block <= kLargestBlock;
  return fit;
}

// A side that has room for the aperture around its middle.
std::int32_t SideFor(std::int32_t side, std::int32_t before, std::int32_t after) {
  return std::max(side, 2 * std::max(before, after) + 3);
}

Box RoomFor(const Box& box, const Reach4& reach) {
  return {box.x, box.y, SideFor(box.width, reach.left, reach.right),
          SideFor(box.height, reach.below, reach.above)};
}

std::vector<Tile> CutInto(const Box& wanted, std::int32_t width, std::int32_t height,
                          const Reach4& reach) {
  std::vector<Tile> tiles;
  for (std::int32_t y = wanted.y; y < wanted.Top(); y += height) {
    for (std::int32_t x = wanted.x; x < wanted.Right(); x += width) {
      // All work boxes have one size: the PSF is then loaded once.
      tiles.push_back({Intersect({x, y, width, height}, wanted),
                       RoomFor(Grow({x, y, width, height}, reach), reach)});
    }
  }
  return tiles;
}

[[noreturn]] void RefuseSize(const Box& whole, const Reach4& reach) {
  throw Refusal(GLIMMERBLUR_TOO_LARGE,
                "The aperture reaches " + std::to_string(reach.left + reach.right) + " x " +
                    std::to_string(reach.below + reach.above) + " pixels on a picture of " +
                    std::to_string(whole.width) + " x " + std::to_string(whole.height) +
                    ", which is more than transforms are long.");
}

}  // namespace

TilePlan PlanTiles(const Box& whole, const Box& wanted, const Reach4& reach,
                   const Footprint& engine, const TileLimits& limits) {
  const Box atOnce = RoomFor(Intersect(Grow(wanted, reach), whole), reach);
  const Fit all = FitOf(atOnce, reach, engine, limits);
  const std::uint64_t bytesAtOnce = all.bytes + limits.beside;
  if (all.isPossible && (limits.memory == 0 || bytesAtOnce <= limits.memory)) {
    return {{{wanted, atOnce}}, all.place, bytesAtOnce};
  }
  // Halves of the longer side, until a tile fits.
  std::int32_t width = wanted.width;
  std::int32_t height = wanted.height;
  for (;;) {
    const bool isLast = width <= kSmallestTile && height <= kSmallestTile;
    const Box work = RoomFor(Grow({0, 0, width, height}, reach), reach);
    const Fit fit = FitOf(work, reach, engine, limits);
    const std::uint64_t bytes = fit.bytes + limits.beside + limits.besideTiles;
    const bool isAllowed = fit.isPossible && (limits.memory == 0 || bytes <= limits.memory);
    // Beyond that halving costs more by what tiles share than it saves.
    const bool isSmall = fit.gridBytes <= kGridsOfATile ||
                         (width <= reach.left + reach.right && height <= reach.below + reach.above);
    if (isAllowed && (isSmall || isLast)) {
      return {CutInto(wanted, width, height, reach), fit.place, bytes};
    }
    if (isLast) {
      if (!fit.isPossible) {
        RefuseSize(whole, reach);
      }
      throw Refusal(GLIMMERBLUR_NO_MEMORY,
                    "The memory limit is " + std::to_string(limits.memory) +
                        " bytes; with this aperture even the smallest tile needs " +
                        std::to_string(bytes) + '.');
    }
    std::int32_t* longer = width >= height ? &width : &height;
    *longer = std::max((*longer + 1) / 2, std::min(kSmallestTile, *longer));
  }
}

}  // namespace lx
