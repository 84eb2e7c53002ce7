// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/shot_foresight.h"

#include <algorithm>
#include <filesystem>
#include <system_error>

#include "host/looks/foresight.h"
#include "host/pictures/picture_file.h"
#include "host/render/grow.h"

namespace glimmerhost {

PictureHead FirstHead(const ShotPlan& plan) {
  std::error_code error;
  const auto there = std::find_if(
      plan.files.begin(), plan.files.end(),
      [&error](const FrameFiles& files) { return std::filesystem::exists(files.input, error); });
  return ReadPictureHead(there == plan.files.end() ? plan.files.front().input : there->input);
}

ShotForesight ForeseeShot(const lx::Footprint& engine, const KeyframedValues& values,
                          const ShotPlan& plan, const PictureHead& picture,
                          const ShotSettings& settings) {
  ShotForesight shot;
  shot.growth = settings.grow ? GrowthOf(values, plan.span, picture.width) : 0;
  for (const FrameFiles& files : plan.files) {
    const Foresight frame =
        Foresee(engine, values.AtGrown(files.frame, shot.growth), picture.width + 2 * shot.growth,
                picture.height + 2 * shot.growth);
    shot.byGrid[frame.grid].push_back(files.frame);
    shot.radius = std::max(shot.radius, frame.radius);
    shot.effectBytes = std::max(shot.effectBytes, frame.effectBytes);
    shot.pictureBytes = frame.pictureBytes;
  }
  // Floats take twice as much.
  if (settings.reading.KeepsFloats(picture.floats)) {
    shot.pictureBytes *= 2;
  }
  return shot;
}

}  // namespace glimmerhost
