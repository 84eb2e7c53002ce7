// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/value_slider.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QStyle>
#include <QStyleOptionSlider>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>

namespace glimmerhost {
namespace {

// What the slider is painted with; it is no unit of any value.
constexpr int kPositions = 10000;

bool IsFine(const QInputEvent& event) { return event.modifiers().testFlag(Qt::ShiftModifier); }

struct Places {
  QRect groove;
  QRect handle;
};

Places PlacesIn(const QStyle& style, const QStyleOptionSlider& option, const QWidget* slider) {
  const auto rect = [&](QStyle::SubControl part) {
    return style.subControlRect(QStyle::CC_Slider, &option, part, slider);
  };
  return {rect(QStyle::SC_SliderGroove), rect(QStyle::SC_SliderHandle)};
}

}  // namespace

ValueSlider::ValueSlider(QWidget* parent) : QSlider(Qt::Horizontal, parent) {
  setRange(0, kPositions);
  // Not by the wheel: who scrolls past it means the page.
  setFocusPolicy(Qt::StrongFocus);
}

void ValueSlider::SetTravel(double travel) {
  if (!isSliderDown()) {
    Stand(travel);
  }
}

void ValueSlider::SetSteps(double step, double fineStep) {
  step_ = step;
  fineStep_ = fineStep;
}

void ValueSlider::Stand(double travel) {
  travel_ = std::clamp(travel, 0.0, 1.0);
  setValue(static_cast<int>(std::lround(travel_ * kPositions)));
}

void ValueSlider::Choose(double travel) {
  const double before = travel_;
  Stand(travel);
  if (travel_ != before) {
    emit TravelChosen(travel_);
  }
}

void ValueSlider::ChooseByKeys(double travel) {
  if (!isByKeys_) {
    isByKeys_ = true;
    emit GestureBegun();
  }
  Choose(travel);
}

double ValueSlider::Length() const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  const Places places = PlacesIn(*style(), option, this);
  return std::max(1, places.groove.width() - places.handle.width());
}

double ValueSlider::TravelAt(double x) const {
  QStyleOptionSlider option;
  initStyleOption(&option);
  const Places places = PlacesIn(*style(), option, this);
  const double travel = (x - places.groove.left() - places.handle.width() / 2.0) / Length();
  return option.upsideDown ? 1.0 - travel : travel;
}

void ValueSlider::mousePressEvent(QMouseEvent* event) {
  if (event->button() != Qt::LeftButton) {
    event->ignore();
    return;
  }
  QStyleOptionSlider option;
  initStyleOption(&option);
  isByKeys_ = false;
  emit GestureBegun();
  setSliderDown(true);
  lastX_ = event->position().x();
  // Who takes the handle does not move it by that.
  const bool isOnHandle =
      PlacesIn(*style(), option, this).handle.contains(event->position().toPoint());
  dragged_ = isOnHandle || IsFine(*event) ? travel_ : TravelAt(lastX_);
  Choose(dragged_);
}

void ValueSlider::mouseMoveEvent(QMouseEvent* event) {
  if (isSliderDown()) {
    const double x = event->position().x();
    const double moved = TravelAt(x) - TravelAt(lastX_);
    dragged_ += IsFine(*event) ? moved * fineStep_ / step_ : moved;
    lastX_ = x;
    Choose(dragged_);
  }
}

void ValueSlider::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    setSliderDown(false);
  }
}

void ValueSlider::mouseDoubleClickEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    emit ResetWanted();
  }
}

void ValueSlider::keyPressEvent(QKeyEvent* event) {
  const double step = IsFine(*event) ? fineStep_ : step_;
  switch (event->key()) {
    case Qt::Key_Left:
    case Qt::Key_Down:
      return ChooseByKeys(travel_ - step);
    case Qt::Key_Right:
    case Qt::Key_Up:
      return ChooseByKeys(travel_ + step);
    case Qt::Key_PageDown:
      return ChooseByKeys(travel_ - 10.0 * step);
    case Qt::Key_PageUp:
      return ChooseByKeys(travel_ + 10.0 * step);
    case Qt::Key_Home:
      return ChooseByKeys(0.0);
    case Qt::Key_End:
      return ChooseByKeys(1.0);
    default:
      event->ignore();
  }
}

void ValueSlider::wheelEvent(QWheelEvent* event) {
  if (!hasFocus()) {
    event->ignore();
    return;
  }
  // Some systems turn the wheel's axis where Shift is held.
  const QPoint angle = event->angleDelta();
  constexpr double kNotch = 120.0;
  const double notches = (angle.y() != 0 ? angle.y() : angle.x()) / kNotch;
  ChooseByKeys(travel_ + notches * (IsFine(*event) ? fineStep_ : step_));
  event->accept();
}

void ValueSlider::focusInEvent(QFocusEvent* event) {
  isByKeys_ = false;
  QSlider::focusInEvent(event);
}

}  // namespace glimmerhost
