// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/wipe_line.h"

#include <QFontMetricsF>
#include <QPen>
#include <algorithm>
#include <cmath>

namespace glimmerhost {
namespace {

constexpr double kGripRadius = 9.0;
constexpr double kReach = 4.0;  // how near to the line a press takes hold of it

// A text on a plate that is read on any picture.
void PaintPlate(QPainter* painter, const QPalette& palette, const QString& text, QPointF corner,
                bool leftOfCorner) {
  const QFontMetricsF metrics(painter->font());
  QRectF plate(corner, QSizeF(metrics.horizontalAdvance(text) + 12, metrics.height() + 4));
  if (leftOfCorner) {
    plate.moveRight(corner.x());
  }
  QColor back = palette.color(QPalette::Window);
  back.setAlphaF(0.75F);
  painter->setPen(Qt::NoPen);
  painter->setBrush(back);
  painter->drawRoundedRect(plate, 3, 3);
  painter->setPen(palette.color(QPalette::WindowText));
  painter->drawText(plate, Qt::AlignCenter, text);
}

}  // namespace

WipeLine::WipeLine(const ViewCamera& camera, double wipe)
    : viewportWidth_(camera.Viewport().width()) {
  const double x = camera.Corner().x() + wipe * camera.ScreenSize().width();
  const double top = std::max(camera.Corner().y(), 0);
  const double bottom =
      std::min(camera.Corner().y() + camera.ScreenSize().height(), camera.Viewport().height());
  line_ = {x, top, x, bottom};
  grip_ = line_.center();
}

bool WipeLine::IsNear(QPointF at) const {
  const bool onLine =
      std::abs(at.x() - line_.x1()) <= kReach && at.y() >= line_.y1() && at.y() <= line_.y2();
  return onLine || std::hypot(at.x() - grip_.x(), at.y() - grip_.y()) <= kGripRadius;
}

double WipeLine::WipeAt(const ViewCamera& camera, double x) {
  return (x - camera.Corner().x()) / camera.ScreenSize().width();
}

void WipeLine::Paint(QPainter* painter, const QPalette& palette, const QString& before,
                     const QString& after) const {
  if (line_.x1() < 0 || line_.x1() > viewportWidth_ || line_.y2() <= line_.y1()) {
    return;
  }
  painter->save();
  painter->setRenderHint(QPainter::Antialiasing, true);
  // Light on dark: one of the two is seen on any picture.
  painter->setPen(QPen(palette.color(QPalette::Shadow), 3.0));
  painter->drawLine(line_);
  painter->setPen(QPen(palette.color(QPalette::HighlightedText), 1.0));
  painter->drawLine(line_);
  painter->setPen(QPen(palette.color(QPalette::Shadow), 1.0));
  painter->setBrush(palette.color(QPalette::Highlight));
  painter->drawEllipse(grip_, kGripRadius, kGripRadius);
  painter->setPen(QPen(palette.color(QPalette::HighlightedText), 1.5));
  for (const double side : {-1.0, 1.0}) {
    const QPointF tip = grip_ + QPointF(side * 6.0, 0.0);
    painter->drawPolyline(
        QPolygonF({tip + QPointF(-side * 3.0, -3.0), tip, tip + QPointF(-side * 3.0, 3.0)}));
  }
  PaintPlate(painter, palette, before, line_.p1() + QPointF(-8.0, 8.0), true);
  PaintPlate(painter, palette, after, line_.p1() + QPointF(8.0, 8.0), false);
  painter->restore();
}

}  // namespace glimmerhost
