// SPDX-License-Identifier: BSD-3-Clause
// How the tracks are used by keys.
#include <QKeyEvent>
#include <algorithm>

#include "host/viewer/panels/keyframe_tracks.h"

namespace glimmerhost {

// A keyframe between two frames is one of the nearest.
int KeyframeTracks::KeyframeBeside(bool isBefore) const {
  int found = frame_;
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    if (selectedTrack_ >= 0 && static_cast<int>(i) != selectedTrack_) {
      continue;
    }
    for (const PlacedKeyframe& key : tracks_[i].keys) {
      const int at = shot_.Nearest(key.frame);
      const bool isBeside = isBefore ? at < frame_ : at > frame_;
      const bool isNearer = found == frame_ || (isBefore ? at > found : at < found);
      found = isBeside && isNearer ? at : found;
    }
  }
  return found;
}

// The keyframes there are selected: keys that move or remove them are for these then.
void KeyframeTracks::StepKeyframe(bool isBefore) {
  const int frame = KeyframeBeside(isBefore);
  selection_.clear();
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    for (const PlacedKeyframe& key : tracks_[i].keys) {
      const bool isOfRow = selectedTrack_ < 0 || static_cast<int>(i) == selectedTrack_;
      if (isOfRow && shot_.Nearest(key.frame) == frame) {
        selection_[tracks_[i].name].push_back(key.frame);
      }
    }
  }
  GoTo(frame);
  viewport()->update();
}

void KeyframeTracks::StepRow(int by) {
  if (!tracks_.empty()) {
    SelectRow(std::clamp(selectedTrack_ + by, 0, static_cast<int>(tracks_.size()) - 1));
    selection_.clear();
    viewport()->update();
  }
}

bool KeyframeTracks::PressArrow(const QKeyEvent& event) {
  const bool isBack = event.key() == Qt::Key_Left;
  if (event.modifiers().testFlag(Qt::AltModifier)) {
    if (!selection_.empty()) {
      dragged_ = selection_;
      MoveSelection(isBack ? -1 : 1, 0);
    }
  } else if (event.modifiers().testFlag(Qt::ControlModifier)) {
    StepKeyframe(isBack);
  } else {
    GoTo(shot_.Beside(frame_, isBack ? -1 : 1));
  }
  return true;
}

bool KeyframeTracks::Press(const QKeyEvent& event) {
  switch (event.key()) {
    case Qt::Key_Left:
    case Qt::Key_Right:
      return PressArrow(event);
    case Qt::Key_Home:
      return GoTo(shot_.First()), true;
    case Qt::Key_End:
      return GoTo(shot_.Last()), true;
    case Qt::Key_Up:
    case Qt::Key_Down:
      return StepRow(event.key() == Qt::Key_Up ? -1 : 1), true;
    case Qt::Key_Delete:
    case Qt::Key_Backspace:
      return RemoveSelection(), true;
    case Qt::Key_Space:
      return emit PlayWanted(), true;
    case Qt::Key_Escape:
      return Abandon();
    default:
      return event.matches(QKeySequence::SelectAll) && SelectAll();
  }
}

// A drag that is taken back has never been.
bool KeyframeTracks::Abandon() {
  if (drag_ != Drag::kKeyframes) {
    return false;
  }
  MoveSelection(0, gesture_);
  drag_ = Drag::kNone;
  return true;
}

bool KeyframeTracks::SelectAll() {
  if (selectedTrack_ >= 0) {
    const Track& track = tracks_[static_cast<std::size_t>(selectedTrack_)];
    selection_.clear();
    for (const PlacedKeyframe& key : track.keys) {
      selection_[track.name].push_back(key.frame);
    }
    viewport()->update();
  }
  return true;
}

void KeyframeTracks::keyPressEvent(QKeyEvent* event) {
  if (!Press(*event)) {
    QAbstractScrollArea::keyPressEvent(event);
  }
}

}  // namespace glimmerhost
