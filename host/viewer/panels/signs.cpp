// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/signs.h"

#include <QColor>
#include <QPainter>
#include <QPainterPath>
#include <QPolygonF>
#include <algorithm>

namespace glimmerhost {
namespace {

QPainterPath Diamond(const QRectF& rect) {
  const double reach = std::min(rect.width(), rect.height()) / 2.0;
  const QPointF middle = rect.center();
  QPainterPath path;
  path.moveTo(middle + QPointF(0, -reach));
  path.lineTo(middle + QPointF(reach, 0));
  path.lineTo(middle + QPointF(0, reach));
  path.lineTo(middle + QPointF(-reach, 0));
  path.closeSubpath();
  return path;
}

// An arrow back to where it came from.
void DrawReset(QPainter* painter, const QRectF& rect, const QColor& colour) {
  constexpr int kDegree = 16;  // Qt counts in sixteenths
  painter->setPen(QPen(colour, 1.6, Qt::SolidLine, Qt::FlatCap));
  painter->setBrush(Qt::NoBrush);
  painter->drawArc(rect, 110 * kDegree, -290 * kDegree);
  const QPointF tip(rect.center().x() - rect.width() * 0.33, rect.top());
  QPainterPath head;
  head.moveTo(tip + QPointF(-1.5, 0.5));
  head.lineTo(tip + QPointF(4.0, -2.6));
  head.lineTo(tip + QPointF(4.0, 3.6));
  head.closeSubpath();
  painter->fillPath(head, colour);
}

// Points to the right, or to the left where its tip is before its back.
void DrawTriangle(QPainter* painter, double back, double tip, const QRectF& rect,
                  const QColor& colour) {
  QPainterPath path;
  path.addPolygon(QPolygonF{{back, rect.top()}, {tip, rect.center().y()}, {back, rect.bottom()}});
  painter->fillPath(path, colour);
}

void DrawBar(QPainter* painter, double left, double width, const QRectF& rect,
             const QColor& colour) {
  painter->fillRect(QRectF(left, rect.top(), width, rect.height()), colour);
}

// An arrow to a small diamond.
void DrawToKeyframe(QPainter* painter, const QRectF& rect, bool isBefore, const QColor& colour) {
  const double half = rect.width() / 2.0;
  const QRectF key(isBefore ? rect.left() - 2.0 : rect.center().x() + 2.0, rect.top(), half,
                   rect.height());
  painter->fillPath(Diamond(key), colour);
  const double back = isBefore ? rect.right() : rect.left();
  DrawTriangle(painter, back, isBefore ? back - half : back + half, rect, colour);
}

}  // namespace

void DrawKeyframe(QPainter* painter, const QRectF& rect, KeyState state, const QColor& colour) {
  const QPainterPath diamond = Diamond(rect);
  if (state == KeyState::kHere) {
    painter->fillPath(diamond, colour);
  } else if (state == KeyState::kElsewhere) {
    painter->save();
    painter->setClipRect(QRectF(rect.left(), rect.top(), rect.width() / 2.0, rect.height()),
                         Qt::IntersectClip);
    painter->fillPath(diamond, colour);
    painter->restore();
  }
  painter->strokePath(diamond, QPen(colour, 1.2));
}

void DrawSign(QPainter* painter, const QRectF& rect, Sign sign, const QColor& colour) {
  constexpr double kBar = 2.0;
  switch (sign) {
    case Sign::kReset:
      return DrawReset(painter, rect.adjusted(0.5, 1, -0.5, 0), colour);
    case Sign::kFirst:
      DrawBar(painter, rect.left(), kBar, rect, colour);
      return DrawTriangle(painter, rect.right(), rect.left() + kBar, rect, colour);
    case Sign::kLast:
      DrawBar(painter, rect.right() - kBar, kBar, rect, colour);
      return DrawTriangle(painter, rect.left(), rect.right() - kBar, rect, colour);
    case Sign::kKeyBefore:
    case Sign::kKeyAfter:
      return DrawToKeyframe(painter, rect, sign == Sign::kKeyBefore, colour);
    case Sign::kPlay:
      return DrawTriangle(painter, rect.left() + 1.0, rect.right(), rect, colour);
    case Sign::kPause:
      DrawBar(painter, rect.left() + 1.0, rect.width() * 0.3, rect, colour);
      return DrawBar(painter, rect.right() - rect.width() * 0.3 - 1.0, rect.width() * 0.3, rect,
                     colour);
    case Sign::kKeyframe:
      return DrawKeyframe(painter, rect, KeyState::kNone, colour);
  }
}

}  // namespace glimmerhost
