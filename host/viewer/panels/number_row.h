// SPDX-License-Identifier: BSD-3-Clause
// NumberRow: a number by a slider, or typed as on the command line.
#pragma once

#include "host/viewer/look/shown_number.h"
#include "host/viewer/look/slider_scale.h"
#include "host/viewer/panels/look_row.h"

class QLineEdit;

namespace glimmerhost {

class ValueSlider;

class NumberRow : public LookRow {
  Q_OBJECT

 public:
  // Its parts are slider and field.
  NumberRow(LookDocument* document, const Parameter& parameter, const QString& help,
            QWidget* parent);

  // In what radii are shown from the next Show on.
  void SetUnit(RadiusUnit unit) { unit_ = unit; }

 protected:
  void ShowValue(const RowFrame& frame) override;
  bool eventFilter(QObject* watched, QEvent* event) override;

 private:
  void AddSlider(const QString& label);
  void AddField(const QString& label);
  void ShowNumber(double value);
  void ChooseTravel(double travel);
  void CommitField();
  void TakeTyped(const std::string& text);
  void SetHalf(const std::string& text);
  bool IsHalf() const;
  ShownNumber Shown() const;

  Parameter parameter_;
  SliderScale scale_;
  RadiusUnit unit_ = RadiusUnit::kPixels;
  double value_ = 0.0;
  int gesture_ = 0;
  ValueSlider* slider_;
  QLineEdit* field_;
};

}  // namespace glimmerhost
