// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/picture_view.h"

#include <QKeyEvent>
#include <QMouseEvent>
#include <QPaintEvent>
#include <QPainter>
#include <QWheelEvent>
#include <algorithm>
#include <cmath>
#include <utility>

namespace glimmerhost {

PictureView::PictureView(QWidget* parent) : QWidget(parent), composer_(this) {
  setObjectName("pictureView");
  setAccessibleName(tr("Picture"));
  setAccessibleDescription(
      tr("F fits the picture in, 1 shows its pixels one to one, plus and minus zoom, arrows move "
         "it, and with Shift they move the wipe."));
  setFocusPolicy(Qt::StrongFocus);
  setMouseTracking(true);
  setSizePolicy(QSizePolicy::Expanding, QSizePolicy::Expanding);
  // Every pixel is painted here.
  setAttribute(Qt::WA_OpaquePaintEvent);
  connect(&composer_, &ViewComposer::Made, this, &PictureView::TakeImage);
}

void PictureView::ShowFrames(std::shared_ptr<const Picture> before,
                             std::shared_ptr<const Picture> after, bool isProxy) {
  before_ = std::move(before);
  after_ = before_ ? std::move(after) : nullptr;
  isProxy_ = isProxy;
  if (before_) {
    camera_.SetPicture({before_->width, before_->height});
  } else {
    shown_ = {};
    shown_.serial = asked_;
  }
  Follow();
  emit FramesShown();
}

void PictureView::ShowStrokes(std::vector<OverlayStroke> strokes) {
  strokes_.SetStrokes(std::move(strokes));
  update();
}

void PictureView::SetHint(const QString& hint) {
  hint_ = hint;
  update();
}

void PictureView::SetView(const ViewSettings& settings) {
  if (!(settings == settings_)) {
    settings_ = settings;
    Compose();
    update();
    emit ViewChanged();
  }
}

void PictureView::Fit() {
  camera_.Fit();
  Follow();
}

void PictureView::OneToOne() { ZoomTo(rect().toRectF().center(), 1.0); }

void PictureView::ZoomAt(QPointF at, double factor) { ZoomTo(at, camera_.Zoom() * factor); }

void PictureView::ZoomTo(QPointF at, double zoom) {
  if (before_) {
    camera_.ZoomTo(at, zoom);
    Follow();
  }
}

QSize PictureView::ScreenSize() const { return before_ ? camera_.ScreenSize() : QSize(0, 0); }

void PictureView::Follow() {
  Compose();
  update();
  if (std::exchange(told_, ScreenSize()) != ScreenSize()) {
    emit ScreenSizeChanged(told_);
  }
  if (std::exchange(toldZoom_, Zoom()) != Zoom()) {
    emit ZoomChanged(toldZoom_);
  }
}

void PictureView::Compose() {
  const ViewPlace place = camera_.Place();
  if (before_ && place.width > 0 && place.height > 0) {
    composer_.Ask({++asked_, before_, after_, settings_, place});
  }
}

// Painted at once: whoever hears of it can rely on what the screen shows.
void PictureView::TakeImage() {
  std::optional<ViewImage> made = composer_.Fetch();
  if (made && before_) {
    shown_ = std::move(*made);
    repaint();
    emit Composed();
  }
}

void PictureView::paintEvent(QPaintEvent* /*event*/) {
  if (devicePixelRatioF() != camera_.DevicePixelRatio()) {
    // The window has come to another screen.
    camera_.SetViewport(size(), devicePixelRatioF());
    Follow();
  }
  QPainter painter(this);
  painter.fillRect(rect(), palette().color(before_ ? QPalette::Dark : QPalette::Window));
  if (before_) {
    PaintImage(&painter);
    strokes_.Paint(&painter, camera_.Corner(), camera_.ScreenSize(), size());
    if (ShowsWipe()) {
      WipeLine(camera_, settings_.wipe).Paint(&painter, palette(), tr("before"), tr("after"));
    }
  } else {
    painter.setPen(palette().color(QPalette::WindowText));
    painter.drawText(rect().adjusted(24, 24, -24, -24), Qt::AlignCenter | Qt::TextWordWrap, hint_);
  }
  if (hasFocus()) {
    painter.setPen(palette().color(QPalette::Highlight));
    painter.drawRect(rect().adjusted(0, 0, -1, -1));
  }
}

// Where the picture is now, whatever place the image was made for.
void PictureView::PaintImage(QPainter* painter) const {
  if (shown_.image.isNull()) {
    return;
  }
  const ViewPlace now = camera_.Place();
  const double scale = now.zoom / shown_.place.zoom;
  const double ratio = camera_.DevicePixelRatio();
  const QPointF corner((now.left - scale * shown_.place.left) / ratio,
                       (now.top - scale * shown_.place.top) / ratio);
  painter->drawImage(QRectF(corner, QSizeF(shown_.image.size()) * (scale / ratio)), shown_.image);
}

void PictureView::resizeEvent(QResizeEvent* /*event*/) {
  camera_.SetViewport(size(), devicePixelRatioF());
  Follow();
}

bool PictureView::ShowsWipe() const {
  return settings_.wipes && !settings_.showsBefore && after_ != nullptr;
}

void PictureView::mousePressEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  const bool isLeft = event->button() == Qt::LeftButton;
  if (!before_ || drag_ != Drag::kNone || !(isLeft || event->button() == Qt::MiddleButton)) {
    return;
  }
  dragButton_ = event->button();
  dragFrom_ = at;
  if (!isLeft || holdsSpace_) {
    drag_ = Drag::kPan;
  } else if (const auto way = strokes_.WayToHandle(FromCorner(at));
             !way && ShowsWipe() && WipeLine(camera_, settings_.wipe).IsNear(at)) {
    drag_ = Drag::kWipe;
  } else {
    drag_ = Drag::kHandle;
    dragOffset_ = way.value_or(QPointF());
    emit Pressed(FromCorner(at) + dragOffset_);
  }
  ShowCursor(at);
}

void PictureView::mouseMoveEvent(QMouseEvent* event) {
  const QPointF at = event->position();
  if (drag_ == Drag::kPan) {
    camera_.PanBy(at - std::exchange(dragFrom_, at));
    Follow();
  } else if (drag_ == Drag::kWipe) {
    SetWipe(WipeLine::WipeAt(camera_, at.x()));
  } else if (drag_ == Drag::kHandle) {
    emit Moved(FromCorner(at) + dragOffset_);
  }
  Hover(at);
  ShowCursor(at);
}

void PictureView::mouseReleaseEvent(QMouseEvent* event) {
  if (drag_ == Drag::kNone || event->button() != dragButton_) {
    return;
  }
  const Drag ended = std::exchange(drag_, Drag::kNone);
  if (ended == Drag::kHandle) {
    emit Released(FromCorner(event->position()) + dragOffset_);
  }
  ShowCursor(event->position());
}

// Not while the module holds a handle: the place of the hand would jump under it.
void PictureView::wheelEvent(QWheelEvent* event) {
  constexpr double kNotch = 120.0;
  constexpr double kFactor = 1.25;  // of a notch
  const double notches = event->angleDelta().y() / kNotch;
  if (drag_ != Drag::kHandle && notches != 0.0) {
    ZoomAt(event->position(), std::pow(kFactor, notches));
    Hover(event->position());
  }
  event->accept();
}

void PictureView::keyPressEvent(QKeyEvent* event) {
  const QPointF middle = rect().toRectF().center();
  switch (event->key()) {
    case Qt::Key_F:
      Fit();
      return;
    case Qt::Key_1:
      OneToOne();
      return;
    case Qt::Key_Plus:
    case Qt::Key_Equal:
      ZoomAt(middle, 2.0);
      return;
    case Qt::Key_Minus:
      ZoomAt(middle, 0.5);
      return;
    case Qt::Key_Space:
      if (!event->isAutoRepeat()) {
        holdsSpace_ = true;
        ShowCursor(mapFromGlobal(QCursor::pos()));
      }
      return;
    default:
      if (!Wipes(*event) && !Pans(*event)) {
        QWidget::keyPressEvent(event);
      }
  }
}

// Shift and an arrow to the side.
bool PictureView::Wipes(const QKeyEvent& event) {
  constexpr double kStep = 0.01;
  const int key = event.key();
  const bool isSide = key == Qt::Key_Left || key == Qt::Key_Right;
  if (!isSide || !ShowsWipe() || !event.modifiers().testFlag(Qt::ShiftModifier)) {
    return false;
  }
  SetWipe(settings_.wipe + (key == Qt::Key_Left ? -kStep : kStep));
  return true;
}

// What is beyond an arrow's side comes into sight.
bool PictureView::Pans(const QKeyEvent& event) {
  const double across = width() / 10.0;
  const double down = height() / 10.0;
  const QPointF way = event.key() == Qt::Key_Left    ? QPointF(across, 0.0)
                      : event.key() == Qt::Key_Right ? QPointF(-across, 0.0)
                      : event.key() == Qt::Key_Up    ? QPointF(0.0, down)
                      : event.key() == Qt::Key_Down  ? QPointF(0.0, -down)
                                                     : QPointF();
  if (way.isNull() || !before_) {
    return false;
  }
  camera_.PanBy(way);
  Follow();
  return true;
}

void PictureView::SetWipe(double wipe) {
  ViewSettings settings = settings_;
  settings.wipe = std::clamp(wipe, 0.0, 1.0);
  SetView(settings);
}

void PictureView::keyReleaseEvent(QKeyEvent* event) {
  if (event->key() == Qt::Key_Space) {
    if (!event->isAutoRepeat()) {
      holdsSpace_ = false;
      ShowCursor(mapFromGlobal(QCursor::pos()));
    }
    return;
  }
  QWidget::keyReleaseEvent(event);
}

void PictureView::focusInEvent(QFocusEvent* event) {
  QWidget::focusInEvent(event);
  update();
}

// The release of space would go to whoever has the focus then.
void PictureView::focusOutEvent(QFocusEvent* event) {
  holdsSpace_ = false;
  QWidget::focusOutEvent(event);
  update();
}

void PictureView::leaveEvent(QEvent* event) {
  QWidget::leaveEvent(event);
  if (std::exchange(isHovered_, false)) {
    emit HoverEnded();
  }
}

void PictureView::Hover(QPointF at) {
  const QPoint pixel = camera_.PixelAt(at);
  if (before_ && QRect(QPoint(), camera_.PictureSize()).contains(pixel)) {
    isHovered_ = true;
    emit Hovered(pixel);
  } else if (std::exchange(isHovered_, false)) {
    emit HoverEnded();
  }
}

void PictureView::ShowCursor(QPointF at) {
  const bool nearWipe = ShowsWipe() && WipeLine(camera_, settings_.wipe).IsNear(at);
  setCursor(!before_                               ? Qt::ArrowCursor
            : drag_ == Drag::kPan                  ? Qt::ClosedHandCursor
            : drag_ == Drag::kWipe                 ? Qt::SplitHCursor
            : holdsSpace_                          ? Qt::OpenHandCursor
            : drag_ == Drag::kHandle               ? Qt::CrossCursor
            : strokes_.WayToHandle(FromCorner(at)) ? Qt::PointingHandCursor
            : nearWipe                             ? Qt::SplitHCursor
                                                   : Qt::CrossCursor);
}

}  // namespace glimmerhost
