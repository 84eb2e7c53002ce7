// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/shot_timeline.h"

#include <QHBoxLayout>
#include <QLabel>
#include <QSignalBlocker>
#include <QSpinBox>
#include <QToolButton>
#include <QVBoxLayout>

#include "host/viewer/panels/keyframe_tracks.h"
#include "host/viewer/panels/row_button.h"

namespace glimmerhost {

// Its arrows go to frames that the clip has, across gaps.
class ShotTimeline::FrameField : public QSpinBox {
 public:
  FrameField(const ShotFrames& shot, QWidget* parent) : QSpinBox(parent), shot_(shot) {}

  void stepBy(int steps) override { setValue(shot_.Beside(value(), steps)); }

 private:
  const ShotFrames& shot_;
};

ShotTimeline::ShotTimeline(LookDocument* document, QWidget* parent)
    : QWidget(parent),
      field_(new FrameField(shot_, this)),
      count_(new QLabel(this)),
      dropped_(new QLabel(this)),
      tracks_(new KeyframeTracks(document, this)) {
  setObjectName("timeline");
  auto* all = new QVBoxLayout(this);
  all->setContentsMargins(0, 0, 0, 0);
  all->setSpacing(0);
  all->addLayout(MakeBar());
  all->addWidget(tracks_, 1);
  connect(tracks_, &KeyframeTracks::FrameChosen, this, &ShotTimeline::Choose);
  connect(tracks_, &KeyframeTracks::PlayWanted, this, &ShotTimeline::TogglePlay);
  connect(tracks_, &KeyframeTracks::Refused, this, &ShotTimeline::Refused);
  SetShot({});
}

RowButton* ShotTimeline::AddButton(QHBoxLayout* bar, Sign sign, const char* name,
                                   const QString& help) {
  auto* button = new RowButton(sign, this);
  button->setObjectName(name);
  button->setToolTip(help);
  button->setAccessibleName(help);
  bar->addWidget(button);
  return button;
}

QHBoxLayout* ShotTimeline::MakeBar() {
  auto* bar = new QHBoxLayout;
  bar->setContentsMargins(8, 3, 8, 3);
  bar->setSpacing(2);
  connect(AddButton(bar, Sign::kFirst, "first", tr("First frame (Home)")), &RowButton::clicked,
          this, &ShotTimeline::GoToFirst);
  connect(AddButton(bar, Sign::kKeyBefore, "keyBefore", tr("Keyframe before (Ctrl+Left)")),
          &RowButton::clicked, this, &ShotTimeline::GoToKeyframeBefore);
  play_ = AddButton(bar, Sign::kPlay, "play", tr("Play (Space)"));
  play_->setCheckable(true);
  connect(play_, &RowButton::clicked, this, &ShotTimeline::PlayToggled);
  connect(AddButton(bar, Sign::kKeyAfter, "keyAfter", tr("Keyframe behind (Ctrl+Right)")),
          &RowButton::clicked, this, &ShotTimeline::GoToKeyframeAfter);
  connect(AddButton(bar, Sign::kLast, "last", tr("Last frame (End)")), &RowButton::clicked, this,
          &ShotTimeline::GoToLast);
  bar->addSpacing(10);
  auto* label = new QLabel(tr("&Frame"), this);
  label->setBuddy(field_);
  bar->addWidget(label);
  bar->addSpacing(4);
  field_->setObjectName("frame");
  field_->setAccessibleName(tr("Frame"));
  // Only what is typed to its end: 1 is no frame of a shot from 1001 on.
  field_->setKeyboardTracking(false);
  field_->setFocusPolicy(Qt::StrongFocus);
  connect(field_, &QSpinBox::valueChanged, this, &ShotTimeline::Choose);
  bar->addWidget(field_);
  bar->addSpacing(8);
  count_->setObjectName("frameCount");
  count_->setForegroundRole(QPalette::PlaceholderText);
  bar->addWidget(count_);
  bar->addSpacing(8);
  length_ = new QToolButton(this);
  length_->setObjectName("length");
  length_->setToolTip(tr("How many frames the picture is shown in"));
  connect(length_, &QToolButton::clicked, this, &ShotTimeline::LengthWanted);
  bar->addWidget(length_);
  bar->addStretch(1);
  dropped_->setObjectName("dropped");
  bar->addWidget(dropped_);
  return bar;
}

void ShotTimeline::SetShot(const std::vector<int>& frames, bool isStill) {
  shot_ = ShotFrames(frames);
  {
    const QSignalBlocker silent(field_);
    field_->setRange(shot_.First(), shot_.Last());
  }
  tracks_->SetShot(shot_);
  const bool hasSeveral = shot_.Count() > 1;
  for (QWidget* part : findChildren<RowButton*>()) {
    part->setEnabled(hasSeveral);
  }
  field_->setEnabled(hasSeveral);
  count_->setText(
      shot_.IsEmpty() ? tr("no clip")
      : hasSeveral
          ? tr("%1 to %2, %3 frames").arg(shot_.First()).arg(shot_.Last()).arg(shot_.Count())
          : tr("one frame"));
  length_->setVisible(isStill && !shot_.IsEmpty());
  length_->setText(hasSeveral ? tr("&Length…") : tr("Make it a &shot…"));
  ShowDropped(0);
  SetFrame(shot_.Nearest(frame_));
}

void ShotTimeline::SetFrame(int frame) {
  frame_ = frame;
  const QSignalBlocker silent(field_);
  field_->setValue(frame);
  tracks_->SetFrame(frame);
}

void ShotTimeline::Choose(int frame) {
  const int chosen = shot_.Nearest(frame);
  const bool isNew = chosen != frame_;
  SetFrame(chosen);
  if (isNew && !shot_.IsEmpty()) {
    emit FrameChosen(chosen);
  }
}

void ShotTimeline::GoToFirst() { Choose(shot_.First()); }
void ShotTimeline::GoToLast() { Choose(shot_.Last()); }
void ShotTimeline::GoToKeyframeBefore() { Choose(tracks_->KeyframeBeside(true)); }
void ShotTimeline::GoToKeyframeAfter() { Choose(tracks_->KeyframeBeside(false)); }

void ShotTimeline::TogglePlay() {
  if (play_->isEnabled()) {
    play_->click();
  }
}

void ShotTimeline::SetPlaying(bool isPlaying) { play_->setChecked(isPlaying); }

void ShotTimeline::ShowDropped(int count) {
  dropped_->setText(count == 0   ? QString()
                    : count == 1 ? tr("1 frame dropped")
                                 : tr("%1 frames dropped").arg(count));
}

void ShotTimeline::SetUnit(RadiusUnit unit) { tracks_->SetUnit(unit); }

}  // namespace glimmerhost
