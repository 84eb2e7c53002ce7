// SPDX-License-Identifier: BSD-3-Clause
// GlimmerBlurInfo: the ports, handles and parameters of the effect.
#pragma once

#include <cstdint>

#include "library/controls.h"
#include "library/image_port.h"
#include "library/overlay_controls.h"

namespace lx {

// Values of the shape control.
enum ApertureShape : std::int32_t { kCircle = 1, kEllipse = 2, kPolygon = 3, kImage = 4 };

// Values hold what the host's store says of the current frame; the ones here are in
// force only until the first reading. Radii are diameters as a fraction of the frame's
// width, for X and for Y.
struct GlimmerBlurInfo {
  ImagePort sourcePort;              // the frame to blur
  ImagePort spreadPort;              // the picture whose content becomes the PSF in the image shape
  ImagePort outputPort;              // the result; its pixel aspect is the one in force
  CrosshairOverlayLX centerOverlay;  // the three handles of the image shape
  CircleOverlayLX innerRingOverlay;  // of radiusPSF1; the names promise no order
  CircleOverlayLX outerRingOverlay;  // of radiusPSF2
  ListControlLX shape;               // an ApertureShape, unless the host's list has more entries
  CheckboxControlLX match;           // polygon: the Y radius follows the X radius
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
