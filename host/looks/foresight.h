// SPDX-License-Identifier: BSD-3-Clause
// What a frame will take, known before it is rendered.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "fftlib/backends/footprint.h"
#include "host/looks/page.h"

namespace glimmerhost {

struct Foresight {
  double radius = 0.0;             // how far the aperture reaches from its centre, in pixels
  lx::GridSides grid;              // that is transformed; 0 x 0 where it would be too large
  std::uint64_t effectBytes = 0;   // of the effect's own buffers
  std::uint64_t pictureBytes = 0;  // of this program's for the frames on their way
};

//   engine  of the module that will render
Foresight Foresee(const lx::Footprint& engine, const std::map<std::string, Value>& values,
                  int width, int height);

// As the effect counts it.
double ApertureRadius(const std::map<std::string, Value>& values, int width);

// Where the grid of a picture becomes a larger one.
struct GridStep {
  int radius;          // the largest whole one that the picture's grid still takes, in pixels
  lx::GridSides next;  // the grid of radii above it; 0 x 0 where there is none
};

//   grid  one that a picture of that size has with some radius
GridStep NextGrid(const lx::Footprint& engine, const lx::GridSides& grid, int width, int height);

}  // namespace glimmerhost
