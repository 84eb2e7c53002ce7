// SPDX-License-Identifier: BSD-3-Clause
#include "library/overlay_lx.h"

#include <cmath>
#include <numbers>

#include "baselib/utils/convert.h"
#include "library/host_message.h"
#include "library/overlay_controls.h"

namespace lx {
namespace {

using quantel::cPoint2;
using quantel::cRect4;

constexpr double kDegree = std::numbers::pi / 180.0;

// A square from its corner.
cRect4 Square(double x, double y, double side) {
  return {NarrowToFloat(x), NarrowToFloat(y), NarrowToFloat(side), NarrowToFloat(side)};
}

// An ellipse about a point, in picture pixels.
struct Ellipse {
  double x;
  double y;
  double radiusX;
  double radiusY;
  double cosine;  // of its rotation
  double sine;

  //   angle  radians, counter-clockwise from its own x axis
  cPoint2 At(double angle) const {
    const double alongX = radiusX * std::cos(angle);
    const double alongY = radiusY * std::sin(angle);
    return {NarrowToFloat(cosine * alongX - sine * alongY + x),
            NarrowToFloat(sine * alongX + cosine * alongY + y)};
  }
};

Ellipse MakeEllipse(double x, double y, double radiusX, double radiusY, float rotation) {
  const auto radians = NarrowToFloat(static_cast<double>(rotation) * kDegree);
  return {x,
          y,
          radiusX,
          radiusY,
          std::cos(static_cast<double>(radians)),
          std::sin(static_cast<double>(radians))};
}

}  // namespace

quantel::cSize2 OverlayData::PictureSize() const {
  return view ? view->pictureSize() : quantel::cSize2{0, 0};
}

void OverlayLX::SetColour(std::int32_t red, std::int32_t green, std::int32_t blue,
                          std::int32_t /*alpha*/) {
  if (data != nullptr) {
    constexpr float kScale = 1.0F / 65535.0F;
    data->colour = quantel::cColour::fromRGB(static_cast<float>(red) * kScale,
                                             static_cast<float>(green) * kScale,
                                             static_cast<float>(blue) * kScale);
  }
}

void OverlayLX::DrawLine(float x0, float y0, float x1, float y1) {
  if (data == nullptr || !data->draw) {
    return;
  }
  const auto height = static_cast<float>(data->PictureSize().second);
  data->draw->drawLine({x0, height - y0}, {x1, height - y1}, data->colour);
}

void OverlayLX::DrawHandle(float x, float y, bool filled) {
  if (data == nullptr) {
    SendHostMessage("OverlayLX::DrawHandle:No Overlay Data");
    return;
  }
  // The height is asked for before the surface is looked at.
  const float top = static_cast<float>(data->PictureSize().second) - y;
  if (!data->draw) {
    return;
  }
  const auto half = static_cast<float>(HandleSize() * 0.5);
  const float left = x - half;
  const float upper = top - half;
  const cRect4 square = Square(left, upper, 2.0 * half);
  if (filled) {
    data->draw->fillRect(square, data->colour, data->colour);
  } else {
    data->draw->frameRect(square, data->colour);
  }
  // A black frame around it shows the handle on a picture of its own colour.
  data->draw->frameRect(Square(left - 1.0, upper - 1.0, 2.0 * (half + 1.0)),
                        quantel::cColour::kBlack);
}

void OverlayLX::DrawCrosshair(float x, float y, bool diagonals) {
  // Divided by the zoom, so that the arms keep their length on the screen.
  const auto from = static_cast<float>(10.0 / static_cast<double>(zoom));
  const auto to = static_cast<float>(25.0 / static_cast<double>(zoom));
  DrawLine(x + from, y, x + to, y);
  DrawLine(x - from, y, x - to, y);
  DrawLine(x, y + from, x, y + to);
  DrawLine(x, y - from, x, y - to);
  if (diagonals) {
    const float nearer = from / 2.0F;
    const float farther = to / 2.0F;
    DrawLine(x + nearer, y + nearer, x + farther, y + farther);
    DrawLine(x - nearer, y + nearer, x - farther, y + farther);
    DrawLine(x + nearer, y - nearer, x + farther, y - farther);
    DrawLine(x - nearer, y - nearer, x - farther, y - farther);
  }
}

void OverlayLX::DrawEllipse(double x, double y, double width, double height, float rotation,
                            bool dashed, double step, double startAngle, double endAngle) {
  if (width < 5.0 || height < 5.0) {
    return;
  }
  const Ellipse ellipse = MakeEllipse(x, y, width / 2.0, height / 2.0, rotation);
  constexpr double kWidestSegment = 36.0;
  const double exact = 360.0 / (width * std::numbers::pi / step);
  const double increment = exact >= kWidestSegment ? kWidestSegment : exact;
  cPoint2 last = ellipse.At(startAngle * kDegree);
  // Intended: an ellipse that no step leads around is its closing line alone. A press on a
  // picture of no size makes an infinite radius, whose increment is 0. Here it is at most
  // 36, and one that is no number is not above 0, either.
  if (increment > 0.0) {
    // The bound ends what a vast width would not: its angles hardly move.
    constexpr std::int32_t kMostSegments = 100000;
    for (std::int32_t segment = 0; segment < kMostSegments; ++segment) {
      const double angle = startAngle + segment * increment;
      if (!(angle <= endAngle)) {
        break;
      }
      const cPoint2 point = ellipse.At(angle * kDegree);
      // Intended: the first segment has no length, for its point is its own predecessor.
      if (!dashed || segment % 2 == 1) {
        DrawLine(last.x, last.y, point.x, point.y);
      }
      last = point;
    }
  }
  // Intended: the closing segment is drawn in a dashed figure too.
  if (startAngle == 0.0 && endAngle == 360.0) {
    const cPoint2 first = ellipse.At(0.0);
    DrawLine(first.x, first.y, last.x, last.y);
  }
}

void OverlayLX::SetColourOf(const OverlayControlLX& control) {
  SetColour(control.red, control.green, control.blue, control.alpha);
}

void OverlayLX::DrawCrosshairControl(CrosshairOverlayLX* control) {
  SetColourOf(*control);
  const float x = static_cast<float>(pictureWidth) * control->x;
  const float y = static_cast<float>(pictureHeight) * control->y;
  DrawCrosshair(x, y, control->diagonals != 0);
  DrawHandle(x, y, control->activePart != 0);
  control->screenX = x;
  control->screenY = y;
}

void OverlayLX::DrawRing(CircleOverlayLX* control) {
  SetColourOf(*control);
  const auto width = static_cast<double>(pictureWidth);
  const double x = width * static_cast<double>(control->x);
  const double y = static_cast<double>(pictureHeight) * static_cast<double>(control->y);
  // Both radii scale with the width, as the aperture's do.
  const Ellipse ellipse =
      MakeEllipse(x, y, width * static_cast<double>(control->sizeX) * 0.5,
                  width * static_cast<double>(control->sizeY) * 0.5, control->rotation);
  constexpr double kStep = 4.0;
  DrawEllipse(x, y, 2.0 * ellipse.radiusX, 2.0 * ellipse.radiusY, control->rotation,
              control->dashed != 0, kStep, 0.0, 360.0);

  constexpr auto kPi = std::numbers::pi_v<float>;
  struct Handle {
    std::int32_t part;
    float angle;
    bool free;  // drawn whether or not the proportions are locked
  };
  for (const Handle& handle :
       {Handle{2, 0.0F, true}, Handle{3, -kPi / 2.0F, false}, Handle{1, -kPi / 4.0F, false}}) {
    const cPoint2 point = ellipse.At(static_cast<double>(handle.angle));
    control->handleX[handle.part - 1] = point.x;
    control->handleY[handle.part - 1] = point.y;
    if (handle.free || control->lockAspect == 0) {
      DrawHandle(point.x, point.y, control->activePart == handle.part);
    }
  }
}

}  // namespace lx
