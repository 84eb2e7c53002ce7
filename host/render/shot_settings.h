// SPDX-License-Identifier: BSD-3-Clause
// ShotSettings: what is the same for all frames of a shot, and decides what becomes of them.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/looks/look_layers.h"
#include "host/pictures/coding.h"
#include "host/pictures/read_report.h"
#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {

// Made once from what was typed, and only passed down from there: nobody below looks at options.
struct ShotSettings {
  std::vector<LookLayer> layers;
  ReadOptions reading;
  bool premultiplied = true;
  Coding coding;                      // of the outputs; one that fits their format
  quantel::cSize2 pixelAspect{0, 0};  // 0:0 for the file's
  bool grow = false;                  // the canvas, by as far as the aperture reaches
  bool overwrite = false;
  bool skipExisting = false;
  bool keepGoing = false;
  bool carryPsf = false;
  bool centred = false;  // apertures of frames of floats
  // Films whose pictures come and go by the pipes, for what is told of frames; empty for none.
  std::string film;
  std::string filmOutput;
  std::map<std::string, std::string> versions;  // for the manifest
  std::string arithmetic;                       // likewise: of frames that go through the module
  std::string shot;                             // likewise: its frames, where times count in them
};

}  // namespace glimmerhost
