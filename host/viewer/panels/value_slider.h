// SPDX-License-Identifier: BSD-3-Clause
// ValueSlider: a slider over 0 to 1 that a scroll area can be scrolled over: the wheel moves it
// only while it has the focus. A click jumps to its place; with Shift everything is ten times as
// fine.
#pragma once

#include <QSlider>

namespace glimmerhost {

class ValueSlider : public QSlider {
  Q_OBJECT

 public:
  explicit ValueSlider(QWidget* parent = nullptr);

  double Travel() const { return travel_; }

  // Where the slider stands, without a signal. Waits while it is dragged: the hand says then.
  void SetTravel(double travel);

  // How far an arrow key and a notch of the wheel go, and with Shift.
  void SetSteps(double step, double fineStep);

 signals:
  // Edits from here on until it is given again are one gesture: a drag, or keys and the wheel in a
  // row as long as the slider has the focus.
  void GestureBegun();
  void TravelChosen(double travel);

  // A double click, in the gesture of its first click.
  void ResetWanted();

 protected:
  void mousePressEvent(QMouseEvent* event) override;
  void mouseMoveEvent(QMouseEvent* event) override;
  void mouseReleaseEvent(QMouseEvent* event) override;
  void mouseDoubleClickEvent(QMouseEvent* event) override;
  void keyPressEvent(QKeyEvent* event) override;
  void wheelEvent(QWheelEvent* event) override;
  void focusInEvent(QFocusEvent* event) override;

 private:
  void Choose(double travel);
  void ChooseByKeys(double travel);
  void Stand(double travel);
  double TravelAt(double x) const;
  double Length() const;

  double travel_ = 0.0;
  double step_ = 0.01;
  double fineStep_ = 0.001;
  double dragged_ = 0.0;  // the travel of the hand, which may be beyond the ends
  double lastX_ = 0.0;
  bool isByKeys_ = false;
};

}  // namespace glimmerhost
