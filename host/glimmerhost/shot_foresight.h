// What the frames of a shot will take, all together.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "host/glimmerhost/shot_values.h"
#include "host/pictures/picture.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

struct ShotForesight {
  std::map<int, std::vector<int>> byGrid;  // frames; those that are too large have a grid of 0
  double radius = 0.0;                     // the largest, in pixels
  std::uint64_t effectBytes = 0;           // the most that a frame takes of the effect's own
  std::uint64_t pictureBytes = 0;          // and of this program's
};

// The first picture that is there, which the others are taken to be as large as. Throws as reading
// does, and MissingInput where none is there.
Picture FirstPicture(const ShotPlan& plan);

ShotForesight ForeseeShot(const ShotValues& values, const ShotPlan& plan, const Picture& picture);

}  // namespace glimmerhost
