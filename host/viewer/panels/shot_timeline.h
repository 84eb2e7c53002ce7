// SPDX-License-Identifier: BSD-3-Clause
// ShotTimeline: the shot in time: buttons to go through it and play it, its frames and its
// keyframes. Playing itself, with its clock, is done by who owns it.
#pragma once

#include <QWidget>
#include <vector>

#include "host/viewer/look/shown_number.h"
#include "host/viewer/panels/frame_scale.h"
#include "host/viewer/panels/look_document.h"

class QHBoxLayout;
class QLabel;
class QToolButton;

namespace glimmerhost {

class KeyframeTracks;
class RowButton;
enum class Sign;

class ShotTimeline : public QWidget {
  Q_OBJECT

 public:
  //   document  must outlive this
  ShotTimeline(LookDocument* document, QWidget* parent);

  // The frames that the clip has; none for no clip.
  //   isStill  they are all of one picture, and how many there are is a person's choice
  void SetShot(const std::vector<int>& frames, bool isStill = false);

  // Without a signal.
  void SetFrame(int frame);
  int Frame() const { return frame_; }

  // Of the play button, without a signal.
  void SetPlaying(bool isPlaying);

  // How many frames were dropped since it plays; 0 shows nothing.
  void ShowDropped(int count);

  // In what the ends of curves are told.
  void SetUnit(RadiusUnit unit);

  KeyframeTracks* Tracks() { return tracks_; }

 public slots:
  void GoToFirst();
  void GoToLast();
  void GoToKeyframeBefore();
  void GoToKeyframeAfter();
  void TogglePlay();

 signals:
  // By the person; always one that the clip has.
  void FrameChosen(int frame);
  void PlayToggled(bool isPlaying);
  // A person wants a still to have another number of frames.
  void LengthWanted();
  void Refused(QString why);

 private:
  class FrameField;

  QHBoxLayout* MakeBar();
  RowButton* AddButton(QHBoxLayout* bar, Sign sign, const char* name, const QString& help);
  void Choose(int frame);

  ShotFrames shot_;
  int frame_ = 1;
  RowButton* play_ = nullptr;
  QToolButton* length_ = nullptr;
  FrameField* field_;
  QLabel* count_;
  QLabel* dropped_;
  KeyframeTracks* tracks_;
};

}  // namespace glimmerhost
