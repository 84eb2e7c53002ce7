// SPDX-License-Identifier: BSD-3-Clause
// Where the parts of an overlay stand, how they look and what dragging them changes. All of it in
// canonical coordinates, and without asking the host for anything.
#pragma once

#include <vector>

#include "doors/openfx/canvas.h"
#include "doors/openfx/parameters.h"

namespace lx::openfx {

enum class Part {
  kNone,
  kOutline,  // of a drawn aperture: both radii keep their proportion
  kEndX,     // of a radius
  kEndY,
  kCentre,  // of what is cut out of a picture
  kInner,
  kOuter,
};

struct OverlayParts {
  bool isCut = false;    // out of a picture
  ofx::PointD origin{};  // the middle of the picture
  ofx::PointD centre{};  // of the aperture
  double radiusX = 0.0;  // of the outline
  double radiusY = 0.0;
  double rotation = 0.0;  // radians, anticlockwise
  bool hasEndY = false;   // whether the Y radius is one of its own
  int corners = 0;        // of the outline
  double innerRadius = 0.0;
  double outerRadius = 0.0;
};

OverlayParts DrawnParts(const Settings& settings, const ofx::PointD& middle);
OverlayParts CutParts(const Settings& settings, const ofx::PointD& middle);

// The part at that place.
//   reach  how far from a part still counts
Part PartAt(const OverlayParts& parts, const ofx::PointD& pen, double reach);

// A parameter's new value; those of two numbers have both.
struct NewValue {
  const char* name;
  ofx::PointD value;
  bool isPoint;
};

// What becomes of the parameters when the pen takes a part there.
std::vector<NewValue> Dragged(const OverlayParts& parts, Part part, const ofx::PointD& pen);

//   lit    the part to draw in another colour
//   pixel  the size of one on the screen
void DrawParts(const OverlayParts& parts, Part lit, const ofx::PointD& pixel, Canvas* canvas);

}  // namespace lx::openfx
