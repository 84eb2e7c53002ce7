// SPDX-License-Identifier: BSD-3-Clause
// RowButton: the small buttons at the end of a row, drawn in the colours of the palette.
#pragma once

#include <QAbstractButton>

class QPainter;
class QRectF;

namespace glimmerhost {

// Whether a value has keyframes.
enum class KeyState {
  kNone,       // an outline
  kElsewhere,  // half full: keyframes, but none at this frame
  kHere,       // full
};

// A keyframe in the middle of a rectangle, as buttons and timelines show it.
void DrawKeyframe(QPainter* painter, const QRectF& rect, KeyState state, const QColor& colour);

class RowButton : public QAbstractButton {
  Q_OBJECT

 public:
  enum class Sign { kKeyframe, kReset };

  RowButton(Sign sign, QWidget* parent);

  KeyState State() const { return state_; }
  void SetState(KeyState state);

  QSize sizeHint() const override;

 protected:
  void paintEvent(QPaintEvent* event) override;
  bool event(QEvent* event) override;

 private:
  Sign sign_;
  KeyState state_ = KeyState::kNone;
};

}  // namespace glimmerhost
