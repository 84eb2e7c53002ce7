// What a frame will take, known before it is rendered.
#pragma once

#include <cstdint>
#include <map>
#include <string>

#include "host/glimmerhost/page.h"

namespace glimmerhost {

struct Foresight {
  double radius = 0.0;  // how far the aperture reaches from its centre, in pixels
  int grid = 0;         // side of the grid that is transformed; 0 where it would be too large
  std::uint64_t effectBytes = 0;   // of the effect's own buffers
  std::uint64_t pictureBytes = 0;  // of this program's for the frames on their way
};

Foresight Foresee(const std::map<std::string, Value>& values, int width, int height);

// As the effect counts it.
double ApertureRadius(const std::map<std::string, Value>& values, int width);

// The largest whole radius in pixels for which a picture of that size needs no larger grid.
int LargestRadius(int grid, int width, int height);

}  // namespace glimmerhost
