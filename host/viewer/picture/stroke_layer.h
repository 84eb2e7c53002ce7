// SPDX-License-Identifier: BSD-3-Clause
// StrokeLayer: the module's strokes on the screen, and which of them a press is meant for.
#pragma once

#include <QImage>
#include <QPainter>
#include <QPoint>
#include <QPointF>
#include <QSize>
#include <optional>
#include <vector>

#include "host/module/overlay_surface.h"

namespace glimmerhost {

// All in logical pixels of the screen from the picture's corner: strokes are as large at every
// zoom.
class StrokeLayer {
 public:
  void SetStrokes(std::vector<OverlayStroke> strokes);
  const std::vector<OverlayStroke>& Strokes() const { return strokes_; }

  // Paints them as OverlaySurface does on a picture of that size.
  //   corner    of the picture, in the widget
  //   viewport  of the widget
  void Paint(QPainter* painter, QPoint corner, QSize picture, QSize viewport);

  // A handle is a rectangle. How far a press must be moved to hit the middle of the handle that is
  // nearest, if it is within 10 pixels of one; (0, 0) inside of one, and none where no handle is
  // near.
  std::optional<QPointF> WayToHandle(QPointF press) const;

 private:
  void Draw(QPoint corner, QSize picture, QSize viewport);

  std::vector<OverlayStroke> strokes_;
  // The image of the last painting, while it holds.
  QImage image_;
  QPoint corner_;
  QSize picture_;
};

}  // namespace glimmerhost
