// SPDX-License-Identifier: BSD-3-Clause
#include "host/module/overlay_surface.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstring>
#include <utility>

namespace glimmerhost {
namespace {

// Coordinates to a 256th of a pixel, so that one on the edge between two pixels falls to the
// same side whatever rounding has left of it.
double Snap(float coordinate) {
  constexpr double kSteps = 256.0;
  return std::round(static_cast<double>(coordinate) * kSteps) / kSteps;
}

struct Point {
  double x;
  double y;
};

// Pixels first to last, both counted.
struct Span {
  int first;
  int last;
};

// What is painted on.
struct Canvas {
  int width;
  int height;
  const PaintPixel& paint;
};

void PaintAt(const Canvas& canvas, double x, double y, const OverlayColour& colour) {
  if (x >= 0.0 && x < canvas.width && y >= 0.0 && y < canvas.height) {
    canvas.paint(static_cast<int>(x), static_cast<int>(y), colour);
  }
}

// The part of the way from a to b that lies between low and high in one direction narrows
// the stretch first..last, which is all of the way from 0 to 1 at the start.
bool Narrow(double a, double b, double low, double high, double* first, double* last) {
  if (a == b) {
    return a >= low && a <= high;
  }
  const double one = (low - a) / (b - a);
  const double other = (high - a) / (b - a);
  *first = std::max(*first, std::min(one, other));
  *last = std::min(*last, std::max(one, other));
  return *first <= *last;
}

// Cuts a line at the canvas's edges. False if nothing of it is left.
bool CutLine(Point* from, Point* to, const Canvas& canvas) {
  double first = 0.0;
  double last = 1.0;
  if (!Narrow(from->x, to->x, 0.0, canvas.width, &first, &last) ||
      !Narrow(from->y, to->y, 0.0, canvas.height, &first, &last)) {
    return false;
  }
  const Point start = *from;
  const Point way{to->x - from->x, to->y - from->y};
  *from = {start.x + first * way.x, start.y + first * way.y};
  *to = {start.x + last * way.x, start.y + last * way.y};
  return true;
}

// The pixels whose middles lie from start on, over that length, cut to the picture with one
// more on either side, so that a frame's own edge is not taken for the picture's.
Span Covered(double start, double length, int size) {
  const auto cut = [size](double pixel) {
    return static_cast<int>(std::clamp(pixel, -1.0, static_cast<double>(size)));
  };
  return {cut(std::ceil(start - 0.5)), cut(std::ceil(start + length - 0.5) - 1.0)};
}

bool IsFinite(const quantel::cRect4& rect) {
  return std::isfinite(rect.first) && std::isfinite(rect.second) && std::isfinite(rect.third) &&
         std::isfinite(rect.fourth);
}

void Paint(const OverlayLine& line, const Canvas& canvas) {
  Point from{Snap(line.from.x), Snap(line.from.y)};
  Point to{Snap(line.to.x), Snap(line.to.y)};
  if (!std::isfinite(from.x + from.y) || !std::isfinite(to.x + to.y) ||
      !CutLine(&from, &to, canvas)) {
    return;
  }
  const int steps = static_cast<int>(std::max(std::abs(std::floor(to.x) - std::floor(from.x)),
                                              std::abs(std::floor(to.y) - std::floor(from.y))));
  for (int step = 0; step <= steps; ++step) {
    const double part = steps == 0 ? 0.0 : static_cast<double>(step) / steps;
    PaintAt(canvas, std::floor(from.x + (to.x - from.x) * part),
            std::floor(from.y + (to.y - from.y) * part), line.colour);
  }
}

void Paint(const OverlayRectangle& rectangle, const Canvas& canvas) {
  const quantel::cRect4& rect = rectangle.rect;
  if (!IsFinite(rect)) {
    return;
  }
  const Span x = Covered(Snap(rect.first), Snap(rect.third), canvas.width);
  const Span y = Covered(Snap(rect.second), Snap(rect.fourth), canvas.height);
  for (int row = y.first; row <= y.last; ++row) {
    const bool whole = rectangle.filled || row == y.first || row == y.last;
    // Between its first and its last row a frame is two pixels, which may be the same one.
    const int stride = whole ? 1 : std::max(x.last - x.first, 1);
    for (int column = x.first; column <= x.last; column += stride) {
      PaintAt(canvas, column, row, rectangle.colour);
    }
  }
}

OverlayColour ColourOf(const quantel::cColour& colour) {
  std::array<float, 3> parts{};
  std::memcpy(parts.data(), colour.toRGB().words, sizeof parts);
  OverlayColour samples{};
  std::transform(parts.begin(), parts.end(), samples.begin(), [](float part) {
    // Not a number is black.
    const float unit = part > 0.0F ? std::min(part, 1.0F) : 0.0F;
    return static_cast<std::uint16_t>(unit * 65535.0F + 0.5F);
  });
  return samples;
}

}  // namespace

void OverlaySurface::beginDraw(bool /*alwaysTrue*/, int /*alwaysOne*/) { strokes_.clear(); }

void OverlaySurface::drawLine(quantel::cPoint2 from, quantel::cPoint2 to, quantel::cColour colour) {
  strokes_.emplace_back(OverlayLine{from, to, ColourOf(colour)});
}

void OverlaySurface::fillRect(quantel::cRect4 rect, quantel::cColour colour,
                              quantel::cColour /*same*/) {
  strokes_.emplace_back(OverlayRectangle{rect, ColourOf(colour), true});
}

void OverlaySurface::frameRect(quantel::cRect4 rect, quantel::cColour colour) {
  strokes_.emplace_back(OverlayRectangle{rect, ColourOf(colour), false});
}

void PaintStrokes(const std::vector<OverlayStroke>& strokes, int width, int height,
                  const PaintPixel& paint) {
  const Canvas canvas{width, height, paint};
  for (const OverlayStroke& stroke : strokes) {
    std::visit([&](const auto& one) { Paint(one, canvas); }, stroke);
  }
}

void OverlaySurface::PaintOn(Picture* picture) const {
  PaintStrokes(strokes_, picture->width, picture->height,
               [picture](int x, int y, const OverlayColour& colour) {
                 const std::size_t pixel =
                     static_cast<std::size_t>(y) * static_cast<std::size_t>(picture->width) +
                     static_cast<std::size_t>(x);
                 std::uint16_t* const sample = picture->samples.data() + pixel * 4;
                 std::copy(colour.begin(), colour.end(), sample);
                 sample[3] = 65535;
               });
}

}  // namespace glimmerhost
