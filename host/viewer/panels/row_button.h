// SPDX-License-Identifier: BSD-3-Clause
// RowButton: the small buttons at the end of a row and on the timeline, drawn in the colours of the
// palette.
#pragma once

#include <QAbstractButton>

#include "host/viewer/panels/signs.h"

namespace glimmerhost {

class RowButton : public QAbstractButton {
  Q_OBJECT

 public:
  // A button that plays shows the sign of what a click does.
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
