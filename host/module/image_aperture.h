// SPDX-License-Identifier: BSD-3-Clause
// What the module makes of the shape image: the aperture that it cuts from a picture.
#pragma once

#include <map>
#include <string>

#include "host/looks/page.h"
#include "host/module/border_pictures.h"

namespace glimmerhost {

struct ImageAperture {
  bool holdsNothing = true;  // all weights are alike: the module takes a point instead
  double beside = 0.0;       // the part of the light that is not in the brightest weight
};

// Weighs the picture's pixels as the module does, by whole numbers: what is darker than 1 of 255 in
// red, or lies beyond the disc, weighs nothing.
//   picture  of the frame's size, as the module gets it
ImageAperture ApertureFrom(FrameImage* picture, const std::map<std::string, Value>& values);

}  // namespace glimmerhost
