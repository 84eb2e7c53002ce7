// SPDX-License-Identifier: BSD-3-Clause
// What the frames of a shot will take, all together.
#pragma once

#include <cstdint>
#include <map>
#include <vector>

#include "fftlib/backends/footprint.h"
#include "host/looks/keyframed_values.h"
#include "host/pictures/picture_head.h"
#include "host/render/shot_settings.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

struct ShotForesight {
  std::map<lx::GridSides, std::vector<int>> byGrid;  // frames; those of kTooLarge will fail
  int growth = 0;                                    // pixels that each side gets
  double radius = 0.0;                               // the largest, in pixels
  std::uint64_t effectBytes = 0;   // the most that a frame takes of the effect's own
  std::uint64_t pictureBytes = 0;  // and of this program's
};

// The grid of frames that have none.
inline constexpr lx::GridSides kTooLarge{};

// Of the first picture that is there, which the others are taken to be as large as. Throws as
// reading does, and MissingInput where none is there. No samples are read.
PictureHead FirstHead(const ShotPlan& plan);

//   engine    of the module that will render
//   settings  whether the canvas grows, and whether pictures are of floats
ShotForesight ForeseeShot(const lx::Footprint& engine, const KeyframedValues& values,
                          const ShotPlan& plan, const PictureHead& picture,
                          const ShotSettings& settings);

}  // namespace glimmerhost
