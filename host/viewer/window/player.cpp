// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/window/player.h"

#include <algorithm>
#include <cmath>
#include <utility>

namespace glimmerhost {

Player::Player(Viewing* viewing, QObject* parent, std::function<std::int64_t()> milliseconds)
    : QObject(parent), viewing_(viewing), milliseconds_(std::move(milliseconds)) {
  clock_.start();
  timer_.setTimerType(Qt::PreciseTimer);
  connect(&timer_, &QTimer::timeout, this, &Player::Tick);
  connect(viewing_, &Viewing::FramesChanged, this, [this] { Play(false); });
}

std::int64_t Player::Now() const { return milliseconds_ ? milliseconds_() : clock_.elapsed(); }

// Of the frame that is looked at, in the clip's list.
int Player::Place() const {
  const std::vector<int>& frames = viewing_->Frames();
  const auto at = std::lower_bound(frames.begin(), frames.end(), viewing_->Frame());
  return static_cast<int>(at - frames.begin());
}

void Player::Begin() {
  begun_ = Now();
  first_ = Place();
  last_ = first_;
  // Twice as often as frames come, so that none is late by a whole one.
  timer_.start(std::max(static_cast<int>(500.0 / rate_), 1));
}

void Player::Play(bool plays) {
  const bool can = viewing_->Frames().size() > 1;
  if ((plays && can) == IsPlaying()) {
    return;
  }
  if (!plays || !can) {
    timer_.stop();
    emit Toggled(false);
    return;
  }
  dropped_ = 0;
  emit DroppedChanged(0);
  Begin();
  emit Toggled(true);
}

void Player::SetRate(double rate) {
  rate_ = rate;
  if (IsPlaying()) {
    Begin();
  }
}

void Player::Tick() {
  if (viewing_->State() == ShownState::kWorking) {
    return;
  }
  const std::vector<int>& frames = viewing_->Frames();
  const auto count = static_cast<std::int64_t>(frames.size());
  const double passed = static_cast<double>(Now() - begun_) * rate_ / 1000.0;
  const auto place =
      static_cast<int>((first_ + static_cast<std::int64_t>(std::floor(passed))) % count);
  if (place == last_) {
    return;
  }
  const auto skipped = static_cast<int>((place - last_ + count) % count - 1);
  last_ = place;
  if (skipped > 0) {
    dropped_ += skipped;
    emit DroppedChanged(dropped_);
  }
  viewing_->SetFrame(frames[static_cast<std::size_t>(place)]);
}

}  // namespace glimmerhost
