// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/picture/view_camera.h"

#include <algorithm>
#include <cmath>

namespace glimmerhost {

void ViewCamera::SetPicture(QSize pixels) {
  if (pixels != picture_) {
    picture_ = pixels;
    Fit();
  }
}

void ViewCamera::SetViewport(QSize logical, double devicePixelRatio) {
  // What was in the middle stays there.
  corner_ +=
      QPointF(logical.width() - viewport_.width(), logical.height() - viewport_.height()) / 2;
  viewport_ = logical;
  ratio_ = devicePixelRatio;
  if (isFitted_) {
    Fit();
  } else {
    KeepInSight();
  }
}

void ViewCamera::Fit() {
  isFitted_ = true;
  if (picture_.isEmpty() || viewport_.isEmpty()) {
    return;
  }
  const double across = viewport_.width() * ratio_ / picture_.width();
  const double down = viewport_.height() * ratio_ / picture_.height();
  zoom_ = std::clamp(std::min(across, down), kLeastZoom, kMostZoom);
  const QSizeF size = ExactSize();
  corner_ = {(viewport_.width() - size.width()) / 2, (viewport_.height() - size.height()) / 2};
}

void ViewCamera::ZoomTo(QPointF at, double zoom) {
  const double cut = std::clamp(zoom, kLeastZoom, kMostZoom);
  corner_ = at + (corner_ - at) * (cut / zoom_);
  zoom_ = cut;
  isFitted_ = false;
  KeepInSight();
}

void ViewCamera::PanBy(QPointF way) {
  corner_ += way;
  isFitted_ = false;
  KeepInSight();
}

QPoint ViewCamera::Corner() const {
  return {static_cast<int>(std::floor(corner_.x() + 0.5)),
          static_cast<int>(std::floor(corner_.y() + 0.5))};
}

QSize ViewCamera::ScreenSize() const {
  const QSizeF size = ExactSize();
  return {std::max(static_cast<int>(std::lround(size.width())), 1),
          std::max(static_cast<int>(std::lround(size.height())), 1)};
}

ViewPlace ViewCamera::Place() const {
  ViewPlace place;
  place.zoom = zoom_;
  place.left = Corner().x() * ratio_;
  place.top = Corner().y() * ratio_;
  place.width = static_cast<int>(std::ceil(viewport_.width() * ratio_));
  place.height = static_cast<int>(std::ceil(viewport_.height() * ratio_));
  return place;
}

QPoint ViewCamera::PixelAt(QPointF at) const {
  const QPointF inPicture = (at - QPointF(Corner())) * (ratio_ / zoom_);
  return {static_cast<int>(std::floor(inPicture.x())), static_cast<int>(std::floor(inPicture.y()))};
}

QSizeF ViewCamera::ExactSize() const { return QSizeF(picture_) * (zoom_ / ratio_); }

void ViewCamera::KeepInSight() {
  constexpr double kSeen = 32.0;
  const auto keep = [](double corner, double size, double viewport) {
    const double seen = std::min({kSeen, size, viewport});
    return std::clamp(corner, seen - size, viewport - seen);
  };
  const QSizeF size = ExactSize();
  corner_ = {keep(corner_.x(), size.width(), viewport_.width()),
             keep(corner_.y(), size.height(), viewport_.height())};
}

}  // namespace glimmerhost
