// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/look_row.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QVBoxLayout>
#include <exception>
#include <utility>
#include <vector>

namespace glimmerhost {
namespace {

QLabel* SmallLabel(QWidget* parent) {
  auto* label = new QLabel(parent);
  label->setWordWrap(true);
  label->setTextFormat(Qt::PlainText);
  label->hide();
  return label;
}

}  // namespace

LookRow::LookRow(LookDocument* document, std::string key, const std::string& name,
                 const QString& label, const QString& help, QWidget* parent)
    : QWidget(parent),
      document_(document),
      key_(std::move(key)),
      name_(name),
      help_(help),
      label_(new QLabel(this)),
      controls_(new QHBoxLayout),
      keyframe_(new RowButton(Sign::kKeyframe, this)),
      reset_(new RowButton(Sign::kReset, this)),
      note_(SmallLabel(this)),
      error_(SmallLabel(this)) {
  setObjectName(QString::fromStdString(key_.empty() ? name_ : key_));
  setToolTip(help_);
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 3, 0, 3);
  all->setSpacing(2);
  label_->setWordWrap(true);
  label_->setTextFormat(Qt::PlainText);
  all->addWidget(label_);
  controls_->setSpacing(4);
  all->addLayout(controls_);
  all->addWidget(note_);
  all->addWidget(error_);
  note_->setForegroundRole(QPalette::PlaceholderText);
  QFont bold = error_->font();
  bold.setBold(true);
  error_->setFont(bold);
  NamePart(note_, "note", "");
  NamePart(error_, "error", tr("Why the value was refused"));
  NamePart(label_, "label", "");
  AddButtons();
  ShowLabel(label);
}

void LookRow::AddButtons() {
  // The ends of all rows stand below each other, also of those without keyframes.
  QSizePolicy kept = keyframe_->sizePolicy();
  kept.setRetainSizeWhenHidden(true);
  keyframe_->setSizePolicy(kept);
  controls_->addWidget(keyframe_);
  controls_->addWidget(reset_);
  NamePart(keyframe_, "keyframe", "");
  NamePart(reset_, "reset", "");
  connect(keyframe_, &RowButton::clicked, this, &LookRow::ToggleKeyframe);
  connect(reset_, &RowButton::clicked, this, [this] {
    ClearError();
    Try([this] { document_->Reset(Name()); });
  });
}

void LookRow::ShowLabel(const QString& label) {
  label_->setText(label);
  setAccessibleName(label);
  keyframe_->setAccessibleName(tr("Keyframe of %1").arg(label));
  reset_->setAccessibleName(tr("Reset %1").arg(label));
}

void LookRow::HideLabel() { label_->hide(); }

void LookRow::NamePart(QWidget* part, const char* name, const QString& accessibleName) {
  part->setObjectName(name);
  part->setAccessibleName(accessibleName);
}

void LookRow::AddControl(QWidget* control, int stretch) {
  controls_->insertWidget(controls_->count() - 2, control, stretch);
  // Keys go through the controls before the buttons behind them.
  setTabOrder(control, keyframe_);
  setTabOrder(keyframe_, reset_);
}

std::string LookRow::Name() const {
  return key_.empty() ? name_ : key_ == kMix ? key_ : document_->Edited().NameOf(key_);
}

QString LookRow::What() const { return tr("Change %1").arg(QString::fromStdString(Name())); }

void LookRow::Show(const RowFrame& frame) {
  frame_ = frame.frame;
  ShowKeyframes();
  const std::string text = document_->TextOf(Name());
  reset_->setEnabled(!text.empty());
  reset_->setToolTip(
      text.empty()
          ? tr("This is the default")
          : tr("Back to the default; it is %1").arg(QString::fromStdString(text).toHtmlEscaped()));
  ShowValue(frame);
}

void LookRow::ShowNote(const QString& note) {
  note_->setText(note);
  note_->setVisible(!note.isEmpty());
}

void LookRow::ShowKeyframes() {
  const std::string name = Name();
  keyframe_->setVisible(document_->Edited().MayHaveKeyframes(name));
  const bool isKeyframed = document_->IsKeyframed(name);
  bool isHere = false;
  for (const PlacedKeyframe& key : document_->Keyframes(name)) {
    isHere = isHere || key.frame == frame_;
  }
  keyframe_->SetState(isHere        ? KeyState::kHere
                      : isKeyframed ? KeyState::kElsewhere
                                    : KeyState::kNone);
  keyframe_->setToolTip(isHere ? tr("Remove the keyframe at frame %1").arg(frame_)
                        : isKeyframed
                            ? tr("Set a keyframe at frame %1; others are elsewhere").arg(frame_)
                            : tr("Set a keyframe at frame %1").arg(frame_));
}

void LookRow::ToggleKeyframe() {
  Try([this] {
    if (keyframe_->State() == KeyState::kHere) {
      document_->RemoveKeyframe(Name(), frame_);
    } else {
      document_->SetKeyframe(Name(), frame_);
    }
  });
}

bool LookRow::Try(const std::function<void()>& edit) {
  try {
    edit();
    ClearError();
    return true;
  } catch (const std::exception& fault) {
    error_->setText(QString::fromUtf8("\u26a0 ") + QString::fromUtf8(fault.what()));
    error_->show();
    return false;
  }
}

void LookRow::ClearError() {
  error_->clear();
  error_->hide();
}

QString HelpOf(const PageOption& option) {
  const QString name = QString::fromStdString(option.name).toHtmlEscaped();
  const QString value = QString::fromStdString(option.value).toHtmlEscaped();
  return QString("<p><b>--%1</b> %2</p><p>%3</p>")
      .arg(name, value, QString::fromStdString(option.help).toHtmlEscaped());
}

}  // namespace glimmerhost
