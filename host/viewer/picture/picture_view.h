// SPDX-License-Identifier: BSD-3-Clause
// PictureView: the picture before and after, the module's strokes over it, and a person's hand on
// both.
//
// The wheel zooms at the cursor. The middle button, or the left one while space is held, moves the
// picture. All else that the left button does is the module's, but on the wipe's line.
#pragma once

#include <QPoint>
#include <QPointF>
#include <QSize>
#include <QString>
#include <QWidget>
#include <cstdint>
#include <memory>
#include <vector>

#include "host/module/overlay_surface.h"
#include "host/pictures/picture.h"
#include "host/viewer/picture/stroke_layer.h"
#include "host/viewer/picture/view_camera.h"
#include "host/viewer/picture/view_composer.h"
#include "host/viewer/picture/wipe_line.h"
#include "host/viewer/pixels/view_settings.h"

namespace glimmerhost {

class PictureView : public QWidget {
  Q_OBJECT

 public:
  explicit PictureView(QWidget* parent = nullptr);

  // Images of them are made on another thread; until one is there, the last is shown, moved and
  // scaled to where the picture is now. A picture of another size than the last is fitted in.
  //   before   null for no picture at all
  //   after    null where there is none yet; a proxy may be smaller than before
  void ShowFrames(std::shared_ptr<const Picture> before, std::shared_ptr<const Picture> after,
                  bool isProxy);
  const std::shared_ptr<const Picture>& Before() const { return before_; }
  const std::shared_ptr<const Picture>& After() const { return after_; }
  bool IsProxy() const { return isProxy_; }
  // What the image on the screen was made of.
  const std::shared_ptr<const Picture>& ComposedAfter() const { return shown_.after; }

  // Whether the image on the screen shows all that was asked for.
  bool IsUpToDate() const { return asked_ == shown_.serial; }

  // In logical pixels of the screen from the picture's corner, and as large at every zoom.
  void ShowStrokes(std::vector<OverlayStroke> strokes);

  // What is said where there is no picture.
  void SetHint(const QString& hint);

  void SetView(const ViewSettings& settings);
  const ViewSettings& View() const { return settings_; }

  void Fit();
  void OneToOne();
  // Keeps what is at a place of the widget there.
  void ZoomAt(QPointF at, double factor);
  // Pixels of the device for one of the picture.
  double Zoom() const { return camera_.Zoom(); }
  bool IsFitted() const { return camera_.IsFitted(); }
  // Of the picture, in logical pixels to the nearest. Empty without one.
  QSize ScreenSize() const;
  // Where the picture's corner is in the widget.
  QPoint Corner() const { return camera_.Corner(); }

  QSize sizeHint() const override { return {960, 600}; }
  QSize minimumSizeHint() const override { return {160, 90}; }

 signals:
  // The left button, in logical pixels of the screen from the picture's corner. A press near a
  // handle is sent as if it were in its middle, and all that follows up to its release is moved by
  // as much.
  void Pressed(QPointF at);
  void Moved(QPointF at);
  void Released(QPointF at);

  // Other pictures are to be seen, or none.
  void FramesShown();
  void ScreenSizeChanged(QSize size);
  void ZoomChanged(double zoom);
  void ViewChanged();
  // The picture's pixel under the cursor.
  void Hovered(QPoint pixel);
  void HoverEnded();
  // A new image is on the screen.
  void Composed();

 protected:
  void paintEvent(QPaintEvent* event) override;
  void resizeEvent(QResizeEvent* event) override;
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void keyReleaseEvent(QKeyEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;
  void focusOutEvent(QFocusEvent* event) override;
  void leaveEvent(QEvent* event) override;

 private:
  enum class Drag { kNone, kHandle, kPan, kWipe };

  // The camera has moved.
  void ZoomTo(QPointF at, double zoom);
  void Follow();
  void Compose();
  void TakeImage();
  void PaintImage(QPainter* painter) const;
  bool ShowsWipe() const;
  bool Wipes(const QKeyEvent& event);
  bool Pans(const QKeyEvent& event);
  void SetWipe(double wipe);
  QPointF FromCorner(QPointF at) const { return at - QPointF(camera_.Corner()); }
  void Hover(QPointF at);
  void ShowCursor(QPointF at);

  ViewComposer composer_;
  std::shared_ptr<const Picture> before_;
  std::shared_ptr<const Picture> after_;
  bool isProxy_ = false;
  ViewImage shown_;
  std::uint64_t asked_ = 0;  // the last image that was asked for
  ViewSettings settings_;
  ViewCamera camera_;
  StrokeLayer strokes_;
  QString hint_;
  QSize told_;  // the size of the picture on the screen that was told last
  double toldZoom_ = 0.0;

  Drag drag_ = Drag::kNone;
  Qt::MouseButton dragButton_ = Qt::NoButton;
  QPointF dragFrom_;    // of panning: where the cursor was last
  QPointF dragOffset_;  // of a handle: from the cursor to where the module is told it is
  bool holdsSpace_ = false;
  bool isHovered_ = false;
};

}  // namespace glimmerhost
