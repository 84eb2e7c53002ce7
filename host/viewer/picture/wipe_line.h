// SPDX-License-Identifier: BSD-3-Clause
// WipeLine: the line between before and after, and the grip that it is dragged by.
#pragma once

#include <QLineF>
#include <QPainter>
#include <QPalette>
#include <QPointF>
#include <QString>

#include "host/viewer/picture/view_camera.h"

namespace glimmerhost {

// Where the line is at the moment. Logical pixels of the widget.
class WipeLine {
 public:
  //   wipe  a part of the picture's width
  WipeLine(const ViewCamera& camera, double wipe);

  // Whether a press there takes hold of the line or its grip.
  bool IsNear(QPointF at) const;

  // The wipe whose line is there; beyond the picture it is not in 0..1.
  static double WipeAt(const ViewCamera& camera, double x);

  // The line, its grip, and what is on either side of it.
  void Paint(QPainter* painter, const QPalette& palette, const QString& before,
             const QString& after) const;

 private:
  QLineF line_;  // what of it is in the viewport, from its top
  QPointF grip_;
  double viewportWidth_;
};

}  // namespace glimmerhost
