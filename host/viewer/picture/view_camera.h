// SPDX-License-Identifier: BSD-3-Clause
// ViewCamera: where a picture is in a viewport, and how large.
#pragma once

#include <QPoint>
#include <QPointF>
#include <QSize>

#include "host/viewer/pixels/view_settings.h"

namespace glimmerhost {

inline constexpr double kLeastZoom = 1.0 / 16.0;
inline constexpr double kMostZoom = 64.0;

// Places are logical pixels of the widget; a zoom counts in pixels of the device, so that 1 shows a
// picture as it is on every screen. The picture's corner is on a whole logical pixel, where the
// module's strokes begin.
class ViewCamera {
 public:
  // A new size of the picture, or the first one, fits it in.
  void SetPicture(QSize pixels);
  void SetViewport(QSize logical, double devicePixelRatio);

  // All of the picture, as large as it can be; it stays so whatever the viewport's size is.
  void Fit();
  // Keeps the place of the picture that is there. The zoom is cut to what is allowed.
  void ZoomTo(QPointF at, double zoom);
  // A part of the picture stays to be seen.
  void PanBy(QPointF way);

  bool IsFitted() const { return isFitted_; }
  double Zoom() const { return zoom_; }
  double DevicePixelRatio() const { return ratio_; }
  QPoint Corner() const;
  // Of the picture, in logical pixels to the nearest; at least one.
  QSize ScreenSize() const;
  QSize PictureSize() const { return picture_; }
  QSize Viewport() const { return viewport_; }
  ViewPlace Place() const;

  // The picture's pixel under a place; outside the picture there is none of that number.
  QPoint PixelAt(QPointF at) const;

 private:
  QSizeF ExactSize() const;
  void KeepInSight();

  QSize picture_;
  QSize viewport_;
  double ratio_ = 1.0;
  double zoom_ = 1.0;
  QPointF corner_;
  bool isFitted_ = true;
};

}  // namespace glimmerhost
