// SPDX-License-Identifier: BSD-3-Clause
// Player: the frames of a shot one after another, by a clock. A frame that is not there in time is
// dropped and counted; the last one is followed by the first.
#pragma once

#include <QElapsedTimer>
#include <QObject>
#include <QTimer>
#include <cstdint>
#include <functional>

#include "host/viewer/window/viewing.h"

namespace glimmerhost {

class Player : public QObject {
  Q_OBJECT

 public:
  //   viewing       must outlive it
  //   milliseconds  since any beginning; null for the system's clock
  explicit Player(Viewing* viewing, QObject* parent = nullptr,
                  std::function<std::int64_t()> milliseconds = {});

  void Play(bool plays);
  bool IsPlaying() const { return timer_.isActive(); }

  // Frames a second, above 0.
  void SetRate(double rate);
  double Rate() const { return rate_; }

  // Since playing began.
  int Dropped() const { return dropped_; }

  // Shows the frame whose time has come, if the one before is there. The timer calls it.
  void Tick();

 signals:
  void Toggled(bool plays);
  void DroppedChanged(int frames);

 private:
  std::int64_t Now() const;
  int Place() const;
  void Begin();

  Viewing* viewing_;
  std::function<std::int64_t()> milliseconds_;
  QElapsedTimer clock_;
  QTimer timer_;
  double rate_ = 24.0;
  std::int64_t begun_ = 0;
  int first_ = 0;  // places in the list of frames
  int last_ = 0;
  int dropped_ = 0;
};

}  // namespace glimmerhost
