// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/row_button.h"

#include <QEvent>
#include <QPainter>
#include <QPainterPath>
#include <QStyle>
#include <QStyleOptionFocusRect>
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

RowButton::RowButton(Sign sign, QWidget* parent) : QAbstractButton(parent), sign_(sign) {
  setFocusPolicy(Qt::StrongFocus);
  setSizePolicy(QSizePolicy::Fixed, QSizePolicy::Fixed);
  setAttribute(Qt::WA_Hover);
}

void RowButton::SetState(KeyState state) {
  if (state != state_) {
    state_ = state;
    update();
  }
}

QSize RowButton::sizeHint() const { return {22, 22}; }

bool RowButton::event(QEvent* event) {
  if (event->type() == QEvent::EnabledChange || event->type() == QEvent::PaletteChange) {
    update();
  }
  return QAbstractButton::event(event);
}

void RowButton::paintEvent(QPaintEvent*) {
  QPainter painter(this);
  painter.setRenderHint(QPainter::Antialiasing);
  const QRectF all = rect();
  if (isEnabled() && (underMouse() || isDown())) {
    QColor back = palette().color(QPalette::WindowText);
    back.setAlphaF(isDown() ? 0.25F : 0.12F);
    painter.setPen(Qt::NoPen);
    painter.setBrush(back);
    painter.drawRoundedRect(all.adjusted(1, 1, -1, -1), 3, 3);
  }
  const bool isSet = sign_ == Sign::kKeyframe && state_ != KeyState::kNone && isEnabled();
  QColor colour = palette().color(isSet ? QPalette::Highlight : QPalette::WindowText);
  if (!isSet) {
    colour.setAlphaF(isEnabled() ? 0.75F : 0.2F);
  }
  if (sign_ == Sign::kKeyframe) {
    DrawKeyframe(&painter, all.adjusted(5.5, 5.5, -5.5, -5.5), state_, colour);
  } else {
    DrawReset(&painter, all.adjusted(6, 6.5, -6, -5.5), colour);
  }
  if (hasFocus()) {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

}  // namespace glimmerhost
