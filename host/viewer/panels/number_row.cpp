// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/number_row.h"

#include <QFontMetrics>
#include <QKeyEvent>
#include <QLineEdit>

#include "host/looks/keyframes.h"
#include "host/looks/units.h"
#include "host/support/failure.h"
#include "host/viewer/panels/value_slider.h"

namespace glimmerhost {

NumberRow::NumberRow(LookDocument* document, const Parameter& parameter, const QString& help,
                     QWidget* parent)
    : LookRow(document, parameter.key, "", QString::fromStdString(parameter.label), help, parent),
      parameter_(parameter),
      scale_(parameter),
      slider_(new ValueSlider(this)),
      field_(new QLineEdit(this)) {
  const QString label = QString::fromStdString(parameter.label);
  AddSlider(label);
  AddField(label);
}

void NumberRow::AddSlider(const QString& label) {
  slider_->SetSteps(scale_.Step(), scale_.FineStep());
  NamePart(slider_, "slider", label);
  AddControl(slider_, 1);
  connect(slider_, &ValueSlider::GestureBegun, this,
          [this] { gesture_ = LookDocument::NewGesture(); });
  connect(slider_, &ValueSlider::TravelChosen, this, &NumberRow::ChooseTravel);
  connect(slider_, &ValueSlider::ResetWanted, this, [this] {
    Try([this] { Document()->SetTextAt(Name(), Frame(), "", What(), gesture_); });
  });
}

void NumberRow::AddField(const QString& label) {
  NamePart(field_, "field", label);
  const QFontMetrics metrics(field_->font());
  field_->setFixedWidth(metrics.horizontalAdvance("-1080.25px") + 14);
  field_->setAlignment(Qt::AlignRight);
  field_->installEventFilter(this);
  AddControl(field_, 0);
  connect(field_, &QLineEdit::editingFinished, this, &NumberRow::CommitField);
  connect(field_, &QLineEdit::textEdited, this, &NumberRow::ClearError);
}

ShownNumber NumberRow::Shown() const { return {parameter_, unit_, Document()->Picture().width}; }

// One of the two numbers that a point's text has.
bool NumberRow::IsHalf() const {
  return parameter_.measure == Measure::kX || parameter_.measure == Measure::kY;
}

void NumberRow::ShowValue(const RowFrame& frame) {
  ShowNumber(std::get<double>(frame.values.at(Key())));
}

void NumberRow::ShowNumber(double value) {
  const bool isNew = value != value_;
  value_ = value;
  slider_->SetTravel(scale_.TravelOf(value));
  const QString text = QString::fromStdString(Shown().Short(value));
  slider_->setAccessibleDescription(text);
  // What is being typed, or was refused, stays until the value is another one.
  if (!field_->isModified() || isNew) {
    if (field_->text() != text) {
      field_->setText(text);
    }
    field_->setModified(false);
    if (isNew) {
      ClearError();
    }
  }
  field_->setToolTip(
      Help() + tr("<p>Now exactly %1</p>").arg(QString::fromStdString(parameter_.Show(value))));
}

// As short as a person would type it. The half of a point has no text of its own.
void NumberRow::ChooseTravel(double travel) {
  const double value = scale_.ValueAt(travel);
  const ShownNumber shown = Shown();
  Try([&] {
    const std::string name = Name();
    if (IsHalf()) {
      Document()->SetValues({{Key(), shown.RoundedValue(value)}}, Frame(), What(), gesture_);
    } else {
      // A key takes no units, and an option does.
      const bool hasUnits = name != Key();
      const std::string text =
          hasUnits ? shown.Rounded(value) : parameter_.Show(shown.RoundedValue(value));
      Document()->SetTextAt(name, Frame(), text, What(), gesture_);
    }
  });
}

void NumberRow::CommitField() {
  const std::string text = field_->text().trimmed().toStdString();
  if (!field_->isModified()) {
    return;
  }
  if (text.empty() || Try([&] { TakeTyped(text); })) {
    field_->setModified(false);
    ShowNumber(value_);
  }
}

void NumberRow::TakeTyped(const std::string& text) {
  if (!IsHalf()) {
    Document()->SetTextAt(Name(), Frame(), text, What(), 0);
  } else if (text.find(',') == std::string::npos && !HasKeyframes(text)) {
    SetHalf(text);
  } else {
    const PageOption* point = Document()->ThePage().SharedOptionOf(Key());
    Document()->SetTextAt(point != nullptr ? point->name : Key(), Frame(), text, What(), 0);
  }
}

void NumberRow::SetHalf(const std::string& text) {
  const LookPicture& picture = Document()->Picture();
  const std::string name = Name();
  Fractions point{};
  try {
    point = ParsePoint(name, text + "," + text, picture.width, picture.height);
  } catch (const UsageError&) {
    throw MustBe(
        name,
        "a fraction (0.5), a percentage (50%) or pixels from the top left (100px), or both "
        "numbers as X,Y",
        text);
  }
  const double value = parameter_.measure == Measure::kX ? point.x : point.y;
  Document()->SetValues({{Key(), parameter_.Check(name, text, value)}}, Frame(), What(), 0);
}

bool NumberRow::eventFilter(QObject* watched, QEvent* event) {
  const bool isEscape =
      event->type() == QEvent::KeyPress && static_cast<QKeyEvent*>(event)->key() == Qt::Key_Escape;
  if (watched == field_ && isEscape && field_->isModified()) {
    field_->setModified(false);
    ClearError();
    ShowNumber(value_);
    field_->selectAll();
    return true;
  }
  return LookRow::eventFilter(watched, event);
}

}  // namespace glimmerhost
