// GlimmerBlurInfo: the ports and parameters of the effect.
#pragma once

#include "library/controls.h"
#include "library/image_port.h"

namespace lx {

// Values hold what the host's store says of the current frame; the ones here are in
// force only until the first reading. Radii are diameters as a fraction of the frame's
// width, for X and for Y.
struct GlimmerBlurInfo {
  ImagePort sourcePort;     // the frame to blur
  ImagePort spreadPort;     // the picture whose content becomes the PSF in the image shape
  ImagePort outputPort;     // the result; its pixel aspect is the one in force
  ListControlLX shape;      // 1 circle, 2 ellipse, 3 polygon, 4 image
  CheckboxControlLX match;  // polygon: the Y radius follows the X radius
  SizeControlLX radiusX;
  SizeControlLX radiusY;
  IntegerControlLX sides;
  FloatControlLX rotation;  // degrees
  FloatControlLX emphasis;
  CheckboxControlLX emphAlpha;
  CheckboxControlLX precision;  // changes nothing
  PositionControlLX center;     // fractions of width and height
  SizeControlLX radiusPSF1;     // either may be the larger
  SizeControlLX radiusPSF2;
};

}  // namespace lx
