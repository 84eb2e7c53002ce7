// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/panels/keyframe_tracks.h"

#include <QContextMenuEvent>
#include <QKeyEvent>
#include <QMenu>
#include <QMouseEvent>
#include <QScrollBar>
#include <QToolTip>
#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <exception>

#include "host/viewer/panels/track_layout.h"

namespace glimmerhost {

KeyframeTracks::KeyframeTracks(LookDocument* document, QWidget* parent)
    : QAbstractScrollArea(parent), document_(document) {
  setObjectName("keyframeTracks");
  setAccessibleName(tr("Keyframes"));
  setFocusPolicy(Qt::StrongFocus);
  setHorizontalScrollBarPolicy(Qt::ScrollBarAlwaysOff);
  viewport()->setMouseTracking(true);
  connect(document_, &LookDocument::Changed, this, &KeyframeTracks::Rebuild);
  Rebuild();
}

void KeyframeTracks::SetShot(const ShotFrames& frames) {
  shot_ = frames;
  Rebuild();
}

void KeyframeTracks::SetFrame(int frame) {
  frame_ = frame;
  viewport()->update();
}

void KeyframeTracks::SetUnit(RadiusUnit unit) {
  unit_ = unit;
  hasCurves_ = false;
  viewport()->update();
}

QSize KeyframeTracks::sizeHint() const {
  return {640, kRulerHeight + kRowHeight * 2 + kLaneHeight};
}

QSize KeyframeTracks::minimumSizeHint() const { return {kNameWidth + 200, kRulerHeight}; }

FrameScale KeyframeTracks::Scale() const {
  return {shot_.First(), shot_.Last(), kNameWidth + kEndRoom,
          viewport()->width() - kNameWidth - 2.0 * kEndRoom};
}

int KeyframeTracks::HeightOf(std::size_t track) const {
  return static_cast<int>(track) == selectedTrack_ ? kRowHeight + kLaneHeight : kRowHeight;
}

int KeyframeTracks::TopOf(std::size_t track) const {
  int top = kRulerHeight - verticalScrollBar()->value();
  for (std::size_t i = 0; i < track; ++i) {
    top += HeightOf(i);
  }
  return top;
}

QPoint KeyframeTracks::PlaceOf(const std::string& name, double frame) const {
  for (std::size_t i = 0; i < tracks_.size(); ++i) {
    if (tracks_[i].name == name) {
      return {static_cast<int>(std::lround(Scale().XOf(frame))), TopOf(i) + kRowHeight / 2};
    }
  }
  return {};
}

QPoint KeyframeTracks::PlaceOnRuler(int frame) const {
  return {static_cast<int>(std::lround(Scale().XOf(frame))), kRulerHeight / 2};
}

std::string KeyframeTracks::SelectedName() const {
  return selectedTrack_ < 0 ? "" : tracks_[static_cast<std::size_t>(selectedTrack_)].name;
}

bool KeyframeTracks::IsSelected(const std::string& name, double frame) const {
  const auto found = selection_.find(name);
  return found != selection_.end() &&
         std::find(found->second.begin(), found->second.end(), frame) != found->second.end();
}

KeyframeTracks::Hit KeyframeTracks::HitAt(const QPoint& point) const {
  Hit hit;
  for (std::size_t i = 0; i < tracks_.size() && point.y() >= kRulerHeight; ++i) {
    if (point.y() < TopOf(i) || point.y() >= TopOf(i) + HeightOf(i)) {
      continue;
    }
    hit.track = static_cast<int>(i);
    hit.frame = Scale().FrameAt(point.x());
    double nearest = kReach;
    for (const PlacedKeyframe& key : tracks_[i].keys) {
      const double away = std::abs(Scale().XOf(key.frame) - point.x());
      if (away <= nearest && std::abs(point.y() - TopOf(i) - kRowHeight / 2) <= kReach + 2) {
        nearest = away;
        hit.frame = key.frame;
        hit.isKeyframe = true;
      }
    }
  }
  return hit;
}

void KeyframeTracks::Rebuild() {
  const std::string selected = SelectedName();
  tracks_.clear();
  selectedTrack_ = -1;
  for (const std::string& name : document_->Edited().KeyframedNames()) {
    if (name == selected) {
      selectedTrack_ = static_cast<int>(tracks_.size());
    }
    tracks_.push_back({name, document_->Keyframes(name)});
  }
  // One row alone has its curve at once.
  if (selectedTrack_ < 0 && tracks_.size() == 1) {
    selectedTrack_ = 0;
  }
  hasCurves_ = false;
  DropLostSelection();
  UpdateScrolling();
  viewport()->update();
}

void KeyframeTracks::DropLostSelection() {
  FramesByName kept;
  for (const Track& track : tracks_) {
    for (const PlacedKeyframe& key : track.keys) {
      if (IsSelected(track.name, key.frame)) {
        kept[track.name].push_back(key.frame);
      }
    }
  }
  selection_ = kept;
}

void KeyframeTracks::UpdateScrolling() {
  const int all = TopOf(tracks_.size()) + verticalScrollBar()->value();
  verticalScrollBar()->setRange(0, std::max(0, all - viewport()->height()));
  verticalScrollBar()->setPageStep(viewport()->height());
  verticalScrollBar()->setSingleStep(kRowHeight);
}

void KeyframeTracks::resizeEvent(QResizeEvent*) {
  hasCurves_ = false;
  UpdateScrolling();
}

template <class Edit>
bool KeyframeTracks::Try(const Edit& edit) {
  try {
    edit();
    return true;
  } catch (const std::exception& fault) {
    emit Refused(QString::fromUtf8(fault.what()));
    return false;
  }
}

void KeyframeTracks::SelectRow(int track) {
  if (track != selectedTrack_) {
    selectedTrack_ = track;
    hasCurves_ = false;
    UpdateScrolling();
    viewport()->update();
  }
}

void KeyframeTracks::GoTo(double frame) { emit FrameChosen(shot_.Nearest(frame)); }

// Of a selected keyframe all of the selection is taken, of any other it alone.
void KeyframeTracks::Click(const Hit& hit, bool adds) {
  const std::string name = hit.track < 0 ? "" : tracks_[static_cast<std::size_t>(hit.track)].name;
  SelectRow(hit.track < 0 ? selectedTrack_ : hit.track);
  if (hit.isKeyframe && adds && IsSelected(name, hit.frame)) {
    std::erase(selection_[name], hit.frame);
  } else if (!hit.isKeyframe || !IsSelected(name, hit.frame)) {
    if (!adds) {
      selection_.clear();
    }
    if (hit.isKeyframe) {
      selection_[name].push_back(hit.frame);
    }
  }
  DropLostSelection();
  viewport()->update();
}

void KeyframeTracks::mousePressEvent(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  if (event->button() != Qt::LeftButton) {
    return;
  }
  if (point.y() < kRulerHeight) {
    drag_ = Drag::kPlayhead;
    GoTo(Scale().FrameAt(point.x()));
    return;
  }
  const Hit hit = HitAt(point);
  Click(hit, (event->modifiers() & (Qt::ControlModifier | Qt::ShiftModifier)) != 0);
  if (hit.isKeyframe) {
    drag_ = Drag::kKeyframes;
    dragFrom_ = point;
    dragged_ = selection_;
    draggedBy_ = 0;
    gesture_ = LookDocument::NewGesture();
  }
}

// All of the drag is one move from where it began: what it crosses stays.
void KeyframeTracks::MoveSelection(int by, int gesture) {
  const bool isTaken = Try([&] { document_->MoveKeyframes(dragged_, by, gesture); });
  if (!isTaken) {
    return;
  }
  draggedBy_ = by;
  selection_.clear();
  for (const auto& [name, frames] : dragged_) {
    for (const double frame : frames) {
      selection_[name].push_back(by == 0 ? frame : std::round(frame) + by);
    }
  }
  viewport()->update();
}

void KeyframeTracks::mouseMoveEvent(QMouseEvent* event) {
  const QPoint point = event->position().toPoint();
  if (drag_ == Drag::kPlayhead) {
    GoTo(Scale().FrameAt(point.x()));
  } else if (drag_ == Drag::kKeyframes) {
    const double by = Scale().FrameAt(point.x()) - Scale().FrameAt(dragFrom_.x());
    if (std::lround(by) != draggedBy_) {
      MoveSelection(static_cast<int>(std::lround(by)), gesture_);
    }
  } else {
    const Hit hit = HitAt(point);
    viewport()->setCursor(hit.isKeyframe             ? Qt::SizeHorCursor
                          : point.y() < kRulerHeight ? Qt::PointingHandCursor
                                                     : Qt::ArrowCursor);
  }
}

void KeyframeTracks::mouseReleaseEvent(QMouseEvent* event) {
  if (event->button() == Qt::LeftButton) {
    drag_ = Drag::kNone;
  }
}

void KeyframeTracks::mouseDoubleClickEvent(QMouseEvent* event) {
  const Hit hit = HitAt(event->position().toPoint());
  if (event->button() != Qt::LeftButton || hit.track < 0) {
    return;
  }
  if (hit.isKeyframe) {
    GoTo(hit.frame);
  } else if (event->position().x() > kNameWidth) {
    const std::string name = tracks_[static_cast<std::size_t>(hit.track)].name;
    Try([&] { document_->SetKeyframe(name, shot_.Nearest(hit.frame)); });
  }
}

void KeyframeTracks::RemoveSelection() {
  if (!selection_.empty()) {
    Try([this] { document_->RemoveKeyframes(FramesByName(selection_)); });
  }
}

void KeyframeTracks::contextMenuEvent(QContextMenuEvent* event) {
  const bool isByKeys = event->reason() == QContextMenuEvent::Keyboard;
  if (!isByKeys) {
    const Hit hit = HitAt(event->pos());
    if (hit.isKeyframe) {
      Click(hit, false);
    }
  }
  if (selection_.empty()) {
    return;
  }
  const auto& [name, frames] = *selection_.begin();
  auto* menu = KeyframeMenu();
  menu->popup(isByKeys ? viewport()->mapToGlobal(PlaceOf(name, frames.front()))
                       : event->globalPos());
}

QMenu* KeyframeTracks::KeyframeMenu() {
  auto* menu = new QMenu(this);
  menu->setObjectName("keyframeMenu");
  menu->setAttribute(Qt::WA_DeleteOnClose);
  const std::pair<QString, Course> courses[] = {{tr("Goes on &straight"), Course::kLinear},
                                                {tr("Goes on s&moothly"), Course::kSmooth},
                                                {tr("&Holds until the next"), Course::kHeld}};
  for (const auto& [text, course] : courses) {
    QAction* action = menu->addAction(text);
    action->setCheckable(true);
    action->setChecked(HasCourse(course));
    connect(action, &QAction::triggered, this, [this, course = course] {
      Try([&] { document_->SetCourses(FramesByName(selection_), course); });
    });
  }
  menu->addSeparator();
  connect(menu->addAction(tr("&Remove")), &QAction::triggered, this,
          &KeyframeTracks::RemoveSelection);
  return menu;
}

bool KeyframeTracks::HasCourse(Course course) const {
  for (const Track& track : tracks_) {
    for (const PlacedKeyframe& key : track.keys) {
      if (IsSelected(track.name, key.frame) && key.key.course != course) {
        return false;
      }
    }
  }
  return true;
}

}  // namespace glimmerhost
