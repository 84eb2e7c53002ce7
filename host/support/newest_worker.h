// SPDX-License-Identifier: BSD-3-Clause
// NewestWorker: a thread that works on what was asked for last. There is no queue: a request that
// waits is replaced by a newer one.
#pragma once

#include <condition_variable>
#include <functional>
#include <memory>
#include <mutex>
#include <optional>
#include <thread>
#include <utility>

namespace glimmerhost {

template <class Request>
class NewestWorker {
 public:
  //   work  is called on the thread, one request after the other; it must not throw. After Abandon
  //         it goes on alone: what it uses must be its own or shared.
  // Throws std::system_error where no thread can be had.
  explicit NewestWorker(std::function<void(Request)> work) : state_(std::make_shared<State>()) {
    state_->work = std::move(work);
    thread_ = std::thread([state = state_] { Loop(state.get()); });
  }

  // Waits for the work in hand; what waits is dropped.
  ~NewestWorker() {
    state_->End();
    if (thread_.joinable()) {
      thread_.join();
    }
  }
  NewestWorker(const NewestWorker&) = delete;
  NewestWorker& operator=(const NewestWorker&) = delete;

  // Any thread may ask.
  void Ask(Request request) {
    std::optional<Request> replaced(std::move(request));
    const std::lock_guard lock(state_->mutex);
    state_->waiting.swap(replaced);
    state_->changed.notify_all();
  }

  // Leaves the thread to itself: it ends when the work in hand returns, if ever. Nothing can be
  // asked any more.
  void Abandon() {
    state_->End();
    if (thread_.joinable()) {
      thread_.detach();
    }
  }

  // Whether nothing waits and nothing is in hand.
  bool IsIdle() const {
    const std::lock_guard lock(state_->mutex);
    return !state_->waiting && !state_->isBusy;
  }

 private:
  struct State {
    std::function<void(Request)> work;
    mutable std::mutex mutex;
    std::condition_variable changed;
    std::optional<Request> waiting;
    bool isBusy = false;
    bool isEnded = false;

    void End() {
      std::optional<Request> dropped;
      const std::lock_guard lock(mutex);
      isEnded = true;
      waiting.swap(dropped);
      changed.notify_all();
    }
  };

  static void Loop(State* state) {
    for (;;) {
      std::optional<Request> request;
      {
        std::unique_lock lock(state->mutex);
        state->isBusy = false;
        state->changed.wait(lock, [state] { return state->isEnded || state->waiting; });
        if (state->isEnded) {
          return;
        }
        request.swap(state->waiting);
        state->isBusy = true;
      }
      state->work(std::move(*request));
    }
  }

  std::shared_ptr<State> state_;
  std::thread thread_;
};

}  // namespace glimmerhost
