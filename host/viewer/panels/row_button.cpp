// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/row_button.h"

#include <QEvent>
#include <QPainter>
#include <QStyle>
#include <QStyleOptionFocusRect>

namespace glimmerhost {
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
    const bool isPlaying = sign_ == Sign::kPlay && isChecked();
    DrawSign(&painter, all.adjusted(5.5, 5.5, -5.5, -5.5), isPlaying ? Sign::kPause : sign_,
             colour);
  }
  if (hasFocus()) {
    QStyleOptionFocusRect option;
    option.initFrom(this);
    style()->drawPrimitive(QStyle::PE_FrameFocusRect, &option, &painter, this);
  }
}

}  // namespace glimmerhost
