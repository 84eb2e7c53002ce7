// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/stroke_layer.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace glimmerhost {
namespace {

// To the nearest of 8 bits.
QRgb RgbOf(const OverlayColour& colour) {
  const auto part = [](std::uint16_t sample) { return (sample + 128) / 257; };
  return qRgb(part(colour[0]), part(colour[1]), part(colour[2]));
}

QRectF RectOf(const OverlayRectangle& handle) {
  return {handle.rect.first, handle.rect.second, handle.rect.third, handle.rect.fourth};
}

// From a point to the nearest of a rectangle.
double Distance(const QRectF& rect, QPointF point) {
  const double x = std::max({rect.left() - point.x(), point.x() - rect.right(), 0.0});
  const double y = std::max({rect.top() - point.y(), point.y() - rect.bottom(), 0.0});
  return std::hypot(x, y);
}

}  // namespace

void StrokeLayer::SetStrokes(std::vector<OverlayStroke> strokes) {
  strokes_ = std::move(strokes);
  image_ = {};
}

void StrokeLayer::Paint(QPainter* painter, QPoint corner, QSize picture, QSize viewport) {
  if (strokes_.empty()) {
    return;
  }
  if (image_.size() != viewport || corner != corner_ || picture != picture_) {
    Draw(corner, picture, viewport);
  }
  painter->setRenderHint(QPainter::SmoothPixmapTransform, false);
  painter->drawImage(0, 0, image_);
}

void StrokeLayer::Draw(QPoint corner, QSize picture, QSize viewport) {
  image_ = QImage(viewport, QImage::Format_ARGB32_Premultiplied);
  image_.fill(Qt::transparent);
  corner_ = corner;
  picture_ = picture;
  PaintStrokes(strokes_, picture.width(), picture.height(),
               [&](int x, int y, const OverlayColour& colour) {
                 const QPoint at = corner + QPoint(x, y);
                 if (image_.rect().contains(at)) {
                   reinterpret_cast<QRgb*>(image_.scanLine(at.y()))[at.x()] = RgbOf(colour);
                 }
               });
}

std::optional<QPointF> StrokeLayer::WayToHandle(QPointF press) const {
  constexpr double kNear = 10.0;
  double nearest = kNear;
  std::optional<QPointF> way;
  for (const OverlayStroke& stroke : strokes_) {
    const auto* const handle = std::get_if<OverlayRectangle>(&stroke);
    if (handle == nullptr) {
      continue;
    }
    const QRectF rect = RectOf(*handle);
    const double distance = Distance(rect, press);
    if (distance == 0.0) {
      return QPointF();
    }
    if (distance <= nearest) {
      nearest = distance;
      way = rect.center() - press;
    }
  }
  return way;
}

}  // namespace glimmerhost
