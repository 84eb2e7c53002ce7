// SPDX-License-Identifier: BSD-3-Clause
// ValueBar: the samples under the cursor, before and after, and which of the two a frame is:
// rendered as it will be written, or a quick stand-in.
#pragma once

#include <QLabel>
#include <QPoint>
#include <QWidget>
#include <optional>

#include "host/viewer/picture/picture_view.h"

namespace glimmerhost {

enum class FrameMark { kNone, kRendering, kProxy, kTrueFrame };

class ValueBar : public QWidget {
  Q_OBJECT

 public:
  //   view  must outlive it
  explicit ValueBar(PictureView* view, QWidget* parent = nullptr);

  void SetMark(FrameMark mark);

 private:
  void ShowValues();

  PictureView* view_;
  std::optional<QPoint> pixel_;
  QLabel* mark_;
  QLabel* place_;
  QLabel* before_;
  QLabel* after_;
};

// Red, green, blue and alpha of a pixel: 0 to 65535, or floats of four digits. Each takes as much
// room whatever it is.
QString ValuesText(const Picture& picture, QPoint pixel);

}  // namespace glimmerhost
