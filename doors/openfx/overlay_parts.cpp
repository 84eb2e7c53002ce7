// SPDX-License-Identifier: BSD-3-Clause
#include "doors/openfx/overlay_parts.h"

#include <algorithm>
#include <cmath>

#include "doors/library/glimmerblur.h"

namespace lx::openfx {
namespace {

constexpr double kPi = 3.14159265358979323846;
constexpr double kMostRadius = 16000.0;
constexpr int kCornersOfRing = 72;

// Pixels of the screen.
constexpr double kArm = 10.0;
constexpr double kHandle = 4.0;

constexpr ofx::Colour kCrosshairColour{1.0F, 1.0F, 1.0F, 1.0F};
constexpr ofx::Colour kRingColour{1.0F, 0.85F, 0.1F, 1.0F};
constexpr ofx::Colour kLitColour{0.2F, 1.0F, 0.4F, 1.0F};

// A point that the aperture has at (x, y) before it is turned and moved.
ofx::PointD Placed(const OverlayParts& parts, double x, double y) {
  const double cosine = std::cos(parts.rotation);
  const double sine = std::sin(parts.rotation);
  return {parts.centre.x + cosine * x - sine * y, parts.centre.y + sine * x + cosine * y};
}

// The other way.
ofx::PointD Unplaced(const OverlayParts& parts, const ofx::PointD& point) {
  const double cosine = std::cos(parts.rotation);
  const double sine = std::sin(parts.rotation);
  const double x = point.x - parts.centre.x;
  const double y = point.y - parts.centre.y;
  return {cosine * x + sine * y, cosine * y - sine * x};
}

// By operations that every system rounds alike, as a C library's own function would not be: what it
// gives becomes values of parameters.
double Length(double x, double y) { return std::sqrt(x * x + y * y); }

double Distance(const ofx::PointD& a, const ofx::PointD& b) { return Length(a.x - b.x, a.y - b.y); }

// How many times the outline's ellipse must grow to go through that point. 0 where it has no area.
double GrowthTo(const OverlayParts& parts, const ofx::PointD& pen) {
  if (!(parts.radiusX > 0.0 && parts.radiusY > 0.0)) {
    return 0.0;
  }
  const ofx::PointD point = Unplaced(parts, pen);
  return Length(point.x / parts.radiusX, point.y / parts.radiusY);
}

bool IsOnOutline(const OverlayParts& parts, const ofx::PointD& pen, double reach) {
  const double growth = GrowthTo(parts, pen);
  // The way from the pen to the ellipse, along the line through the middle.
  return growth > 0.0 && std::abs(1.0 - 1.0 / growth) * Distance(pen, parts.centre) <= reach;
}

double Radius(double radius) { return std::clamp(radius, 0.0, kMostRadius); }

std::vector<ofx::PointD> Outline(const OverlayParts& parts, int corners, double radiusX,
                                 double radiusY) {
  std::vector<ofx::PointD> points;
  for (int i = 0; i < corners; ++i) {
    const double angle = 2.0 * kPi * i / corners;
    points.push_back(Placed(parts, radiusX * std::cos(angle), radiusY * std::sin(angle)));
  }
  return points;
}

void DrawCrosshair(const ofx::PointD& place, const ofx::PointD& pixel, Canvas* canvas) {
  canvas->DrawLines({{place.x - kArm * pixel.x, place.y},
                     {place.x + kArm * pixel.x, place.y},
                     {place.x, place.y - kArm * pixel.y},
                     {place.x, place.y + kArm * pixel.y}});
}

void DrawHandle(const ofx::PointD& place, const ofx::PointD& pixel, Canvas* canvas) {
  const double x = kHandle * pixel.x;
  const double y = kHandle * pixel.y;
  canvas->DrawLoop({{place.x - x, place.y - y},
                    {place.x + x, place.y - y},
                    {place.x + x, place.y + y},
                    {place.x - x, place.y + y}});
}

}  // namespace

OverlayParts DrawnParts(const Settings& settings, const ofx::PointD& middle) {
  const bool polygon = settings.shape == GLIMMERBLUR_POLYGON;
  OverlayParts parts;
  parts.origin = middle;
  parts.centre = middle;
  parts.radiusX = settings.radiusX;
  parts.hasEndY = settings.shape == GLIMMERBLUR_ELLIPSE || (polygon && !settings.matchRadii);
  parts.radiusY = parts.hasEndY ? settings.radiusY : settings.radiusX;
  parts.corners = polygon ? settings.sides : kCornersOfRing;
  if (settings.shape != GLIMMERBLUR_CIRCLE) {
    parts.rotation = settings.rotation * kPi / 180.0;
  }
  return parts;
}

OverlayParts CutParts(const Settings& settings, const ofx::PointD& middle) {
  OverlayParts parts;
  parts.isCut = true;
  parts.origin = middle;
  parts.centre = {middle.x + settings.centre.x, middle.y + settings.centre.y};
  parts.innerRadius = settings.innerRadius;
  parts.outerRadius = settings.outerRadius;
  return parts;
}

Part PartAt(const OverlayParts& parts, const ofx::PointD& pen, double reach) {
  const double distance = Distance(pen, parts.centre);
  if (parts.isCut) {
    if (distance <= reach) {
      return Part::kCentre;
    }
    if (std::abs(distance - parts.innerRadius) <= reach) {
      return Part::kInner;
    }
    return std::abs(distance - parts.outerRadius) <= reach ? Part::kOuter : Part::kNone;
  }
  if (Distance(pen, Placed(parts, parts.radiusX, 0.0)) <= reach) {
    return Part::kEndX;
  }
  if (parts.hasEndY && Distance(pen, Placed(parts, 0.0, parts.radiusY)) <= reach) {
    return Part::kEndY;
  }
  return IsOnOutline(parts, pen, reach) ? Part::kOutline : Part::kNone;
}

std::vector<NewValue> Dragged(const OverlayParts& parts, Part part, const ofx::PointD& pen) {
  const ofx::PointD along = Unplaced(parts, pen);
  const double distance = Distance(pen, parts.centre);
  const auto radius = [](const char* name, double value) {
    return NewValue{name, {Radius(value), 0.0}, false};
  };
  switch (part) {
    case Part::kOutline: {
      const double growth = GrowthTo(parts, pen);
      std::vector<NewValue> values{radius(kRadiusX, parts.radiusX * growth)};
      if (parts.hasEndY) {
        values.push_back(radius(kRadiusY, parts.radiusY * growth));
      }
      return values;
    }
    case Part::kEndX:
      return {radius(kRadiusX, std::abs(along.x))};
    case Part::kEndY:
      return {radius(kRadiusY, std::abs(along.y))};
    case Part::kCentre:
      return {{kApertureCentre, {pen.x - parts.origin.x, pen.y - parts.origin.y}, true}};
    case Part::kInner:
      return {radius(kApertureInner, distance)};
    case Part::kOuter:
      return {radius(kApertureOuter, distance)};
    case Part::kNone:
      break;
  }
  return {};
}

void DrawParts(const OverlayParts& parts, Part lit, const ofx::PointD& pixel, Canvas* canvas) {
  const auto choose = [&](Part part, const ofx::Colour& colour) {
    canvas->SetColour(part == lit ? kLitColour : colour);
  };
  canvas->SetDashed(false);
  choose(Part::kCentre, kCrosshairColour);
  DrawCrosshair(parts.centre, pixel, canvas);
  if (parts.isCut) {
    choose(Part::kInner, kRingColour);
    canvas->DrawLoop(Outline(parts, kCornersOfRing, parts.innerRadius, parts.innerRadius));
    canvas->SetDashed(true);
    choose(Part::kOuter, kRingColour);
    canvas->DrawLoop(Outline(parts, kCornersOfRing, parts.outerRadius, parts.outerRadius));
    return;
  }
  choose(Part::kOutline, kRingColour);
  canvas->DrawLoop(Outline(parts, parts.corners, parts.radiusX, parts.radiusY));
  choose(Part::kEndX, kRingColour);
  DrawHandle(Placed(parts, parts.radiusX, 0.0), pixel, canvas);
  if (parts.hasEndY) {
    choose(Part::kEndY, kRingColour);
    DrawHandle(Placed(parts, 0.0, parts.radiusY), pixel, canvas);
  }
}

}  // namespace lx::openfx
