// SPDX-License-Identifier: BSD-3-Clause
// The outlines of apertures, as polygons in the pixels of a mask.
#pragma once

#include <cstdint>

#include "fftlib/psf/polygon_fill.h"

namespace lx {

// Where an outline stands and how it is drawn.
//   centreX, centreY  pixels
//   radiusX, radiusY  pixels; below the smallest as the smallest
//   rotation          degrees
//   aspectX, aspectY  divisors of the extents, applied after the rotation, so that
//                     unequal ones shear a rotated outline
struct OutlineFrame {
  float centreX;
  float centreY;
  float radiusX;
  float radiusY;
  float rotation;
  float aspectX;
  float aspectY;
  float smallestRadius = 1.0F;
};

// An ellipse as a 50-gon.
PsfPolygon MakeEllipse(const OutlineFrame& frame);

// A regular polygon on the ellipse, its first vertex on the X axis.
//   sides  below 3 as 3, above 50 as 50
PsfPolygon MakeRegularPolygon(const OutlineFrame& frame, std::int32_t sides);

// A rectangle of length radiusX and thickness radiusY that begins at the centre.
PsfPolygon MakeRectangle(const OutlineFrame& frame);

// The same, moved towards the centre.
PsfPolygon MakeCentredRectangle(const OutlineFrame& frame);

}  // namespace lx
