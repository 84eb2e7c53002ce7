// SPDX-License-Identifier: BSD-3-Clause
// How a picture is cut where it can't be rendered at once.
#pragma once

#include <cstdint>
#include <vector>

#include "doors/library/box.h"
#include "fftlib/backends/footprint.h"
#include "fftlib/core/grid.h"

namespace lx {

// What is rendered at once: the work box around a tile has all that the tile needs, or ends with
// the picture, whose edge the engine then repeats by itself.
struct Tile {
  Box wanted;
  Box work;
};

struct TilePlan {
  std::vector<Tile> tiles;  // if more than one, all with work boxes of one size
  GridPlace place;          // of a work box in the engine's grid
  std::uint64_t bytes;      // of all that is held: grids, work picture, and what is beside them
};

// What a plan must keep to.
struct TileLimits {
  std::int32_t channels;      // of the work picture
  std::int32_t sampleBytes;   // of one of its samples
  std::uint64_t memory;       // bytes; 0: no limit
  std::uint64_t beside;       // bytes more that are held in any case
  std::uint64_t besideTiles;  // and those that more than one tile takes
};

// One tile where that is possible, else as few as the limits allow, with grids of at most 64 MiB if
// the aperture lets them be as small. Throws a Refusal where nothing fits.
TilePlan PlanTiles(const Box& whole, const Box& wanted, const Reach4& reach,
                   const Footprint& engine, const TileLimits& limits);

}  // namespace lx
