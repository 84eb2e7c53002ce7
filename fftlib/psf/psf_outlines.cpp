// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/psf/psf_outlines.h"

#include <algorithm>
#include <cstdint>

#include "baselib/utils/convert.h"
#include "fftkernels/mixed_radix/roots.h"

namespace lx {
namespace {

// Single-precision constants, widened: 1 degree, and a turn divided by 50 and by 1.
constexpr double kDegree = 0.017453292F;
constexpr double kEllipseStep = 0.12566371F;
constexpr float kFullTurn = 6.2831855F;

// Written so that a radius that is not a number stays what it is.
double RaiseRadius(const OutlineFrame& frame, float radius) {
  return radius < frame.smallestRadius ? frame.smallestRadius : radius;
}

// Vertices at equal parameter steps on the rotated ellipse.
PsfPolygon MakeEllipticOutline(const OutlineFrame& frame, std::int32_t count, double step) {
  const double a = RaiseRadius(frame, frame.radiusX);
  const double b = RaiseRadius(frame, frame.radiusY);
  const double theta = frame.rotation * kDegree;
  const auto [cosine, sine] = RootOfAngle(theta);
  const double ix = 1.0 / frame.aspectX;
  const double iy = 1.0 / frame.aspectY;
  PsfPolygon polygon;
  polygon.count = count;
  for (std::int32_t k = 0; k < count; ++k) {
    const Root t = RootOfAngle(k * step);
    const double onA = a * t.cosine;
    const double onB = b * t.sine;
    polygon.vertices[k] = {NarrowToFloat((cosine * onA - sine * onB) * ix + frame.centreX),
                           NarrowToFloat((sine * onA + cosine * onB) * iy + frame.centreY)};
  }
  return polygon;
}

PsfPolygon MakeRectangleOutline(const OutlineFrame& frame, bool moved) {
  // Intended: rectangles turn the other way round than ellipses.
  const double theta = frame.rotation * -kDegree;
  const auto [c, s] = RootOfAngle(theta);
  const double length = RaiseRadius(frame, frame.radiusX);
  const double half = RaiseRadius(frame, frame.radiusY) * 0.5;
  double baseX = frame.centreX;
  double baseY = frame.centreY;
  if (moved) {
    // Intended: half the length in x, but half of the half thickness in y, so that a
    // rotated rectangle is not centred exactly.
    baseX -= c * length * 0.5;
    baseY -= s * half * 0.5;
  }
  const double alongX = c * length;
  const double alongY = s * length;
  const double acrossX = s * half;
  const double acrossY = c * half;
  const double ix = 1.0 / frame.aspectX;
  const double iy = 1.0 / frame.aspectY;
  const auto vertex = [&](double x, double y) {
    return PolygonVertex{NarrowToFloat(baseX + x * ix), NarrowToFloat(baseY + y * iy)};
  };
  PsfPolygon polygon;
  polygon.count = 4;
  polygon.vertices[0] = vertex(acrossX, -acrossY);
  polygon.vertices[1] = vertex(alongX + acrossX, alongY - acrossY);
  polygon.vertices[2] = vertex(alongX - acrossX, alongY + acrossY);
  polygon.vertices[3] = vertex(-acrossX, acrossY);
  return polygon;
}

}  // namespace

PsfPolygon MakeEllipse(const OutlineFrame& frame) {
  return MakeEllipticOutline(frame, kPolygonVertices, kEllipseStep);
}

PsfPolygon MakeRegularPolygon(const OutlineFrame& frame, std::int32_t sides) {
  const std::int32_t count = std::clamp(sides, 3, kPolygonVertices);
  // A float's division: the vertices' last bits follow from how it rounds.
  const float step = kFullTurn / static_cast<float>(count);
  return MakeEllipticOutline(frame, count, step);
}

PsfPolygon MakeRectangle(const OutlineFrame& frame) { return MakeRectangleOutline(frame, false); }

PsfPolygon MakeCentredRectangle(const OutlineFrame& frame) {
  return MakeRectangleOutline(frame, true);
}

}  // namespace lx
