// SPDX-License-Identifier: BSD-3-Clause
// The aperture as a picture to look at: what a point of light becomes.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/looks/parameter.h"
#include "host/module/border_pictures.h"
#include "host/module/effect_module.h"
#include "host/pictures/picture.h"
#include "hostframe/interfaces/geometry.h"
#include "hostframe/interfaces/ptr.h"

namespace glimmerhost {

// What an aperture is made from.
struct ApertureLook {
  std::map<std::string, Value> values;  // of the store; the emphasis is not looked at
  quantel::cSize2 pixelAspect{1, 1};
  quantel::cPtr<FrameImage> spread;  // where the shape is image; as large as the frame
  int width = 0;                     // of the frame that it is for
  int height = 0;
};

// The square around a light in the middle of that frame, with a border of 2 pixels that hold
// nothing.
struct ApertureSpread {
  int side = 0;
  std::vector<double> shares;  // of the light that each pixel gets; the largest is 1
  bool isCut = false;          // it reaches beyond the frame
};

// Whether the disc that the shape image cuts it from shows nothing. False for the other shapes.
bool ApertureHoldsNothing(const ApertureLook& look);

// Renders one bright pixel through the module. Throws Failure, also where nothing comes of it.
ApertureSpread SpreadOneLight(const EffectModule& module, const ApertureLook& look);

// Each of its pixels as a square, the brightest one white: grey, and as opaque as bright.
//   zoom  the square's side, 1 to 64
Picture PictureOfSpread(const ApertureSpread& spread, int zoom);

}  // namespace glimmerhost
