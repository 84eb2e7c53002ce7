// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/support/doorbell.h"

#include <QCoreApplication>
#include <QEvent>
#include <mutex>
#include <new>
#include <thread>

namespace glimmerhost {

struct Doorbell::State {
  std::mutex mutex;
  Doorbell* bell;  // null once it is gone
  bool isRinging = false;
};

// False where there is no memory for it. Who rings has put something down that nobody would come
// for otherwise.
bool Doorbell::TryRing(State* state) {
  const std::lock_guard lock(state->mutex);
  if (state->bell == nullptr || state->isRinging) {
    return true;
  }
  try {
    QCoreApplication::postEvent(state->bell, new QEvent(QEvent::User));
    state->isRinging = true;
    return true;
  } catch (const std::bad_alloc&) {
    return false;
  }
}

Doorbell::Doorbell(QObject* parent) : QObject(parent), state_(std::make_shared<State>()) {
  state_->bell = this;
}

Doorbell::~Doorbell() {
  const std::lock_guard lock(state_->mutex);
  state_->bell = nullptr;
}

std::function<void()> Doorbell::Ringer() const {
  return [state = state_] {
    while (!TryRing(state.get())) {
      std::this_thread::yield();
    }
  };
}

bool Doorbell::event(QEvent* event) {
  if (event->type() != QEvent::User) {
    return QObject::event(event);
  }
  {
    const std::lock_guard lock(state_->mutex);
    state_->isRinging = false;
  }
  emit Rung();
  return true;
}

}  // namespace glimmerhost
