// SPDX-License-Identifier: BSD-3-Clause
// Convex polygons into 8-bit masks, with exact area antialiasing.
//
// Coordinates are continuous: pixel (i, j) covers the unit square from (i, j) to
// (i + 1, j + 1), y grows downwards. A pixel's value is 255 times the part of its square
// that the polygon covers, with no sub-pixel grid.
#pragma once

#include <cstdint>

#include "imagelib/imagelib.h"

namespace lx {

inline constexpr std::int32_t kPolygonVertices = 50;

struct PolygonVertex {
  float x;
  float y;
};

// An outline: convex, wound either way.
struct PsfPolygon {
  std::int32_t count;
  PolygonVertex vertices[kPolygonVertices];
};

// A polygon while it is being clipped. Each side of a box that cuts a convex polygon can
// add one vertex, so an outline of 50 needs room for 54.
inline constexpr std::int32_t kClipVertices = 64;

struct ClipPolygon {
  std::int32_t count;
  PolygonVertex vertices[kClipVertices];
};

ClipPolygon MakeClipPolygon(const PsfPolygon& polygon);

struct ClipBox {
  float xMin;
  float xMax;
  float yMin;
  float yMax;
};

enum class ClipResult : std::int32_t { kNothing = 0, kClipped = 1, kInside = 2 };

// The area of the polygon within the square from (x, y) to (x + 1, y + 1), 0 to 1.
float PixelCoverage(const PsfPolygon& polygon, std::int32_t x, std::int32_t y);

using CoverageFunction = float (*)(const PsfPolygon& polygon, std::int32_t x, std::int32_t y);

// The pixel that the first one of a mask is.
struct MaskOrigin {
  std::int32_t x = 0;
  std::int32_t y = 0;
};

// Fills the polygon. Writes only pixels of the rows that it spans, and never clears.
// Does nothing for a mask that is null, has no samples or is not 8-bit with one channel. Nor for a
// polygon of fewer than 3 vertices or more than 50, or with a vertex that is not finite.
//   coverage  how much of a pixel the polygon covers; another one than PixelCoverage
//             shows which pixels are asked for: those that an edge may cross
//   origin    of the mask, which then holds what a mask from (0, 0) on would hold there, bit for
//             bit: coordinates round by where they are
void FillConvexPolygon(ImageRec* mask, const PsfPolygon& polygon,
                       CoverageFunction coverage = PixelCoverage, MaskOrigin origin = {});

// Replaces the polygon by what lies within the box; kNothing leaves a count of 0, and
// kInside the polygon as it was. A vertex on a side of the box counts as inside.
ClipResult ClipToBox(ClipPolygon* polygon, const ClipBox& box);

// Writes into target the part of source where sign * coordinate - k <= 0.
//   axis  0 for x, 1 for y
//   sign  -1 or +1
void ClipToHalfSpace(const ClipPolygon& source, ClipPolygon* target, std::int32_t axis, float sign,
                     float k);

// The absolute area.
float PolygonArea(const ClipPolygon& polygon);

}  // namespace lx
