// SPDX-License-Identifier: BSD-3-Clause
// Channel: hands things from one thread to the next, in order.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace glimmerhost {

template <class Thing>
class Channel {
 public:
  //   capacity  of things that wait to be taken; whoever puts more waits, too
  explicit Channel(std::size_t capacity) : capacity_(capacity) {}

  // False, and the thing is gone, if it has been closed.
  bool Put(Thing thing) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || things_.size() < capacity_; });
    if (closed_) {
      return false;
    }
    things_.push_back(std::move(thing));
    changed_.notify_all();
    return true;
  }

  // None once all that was put is taken and nothing more will come.
  std::optional<Thing> Take() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || !things_.empty(); });
    if (things_.empty()) {
      return std::nullopt;
    }
    std::optional<Thing> thing(std::move(things_.front()));
    things_.pop_front();
    changed_.notify_all();
    return thing;
  }

  // Whether nothing that is put will be taken.
  bool IsClosed() {
    const std::lock_guard lock(mutex_);
    return closed_;
  }

  // For whoever puts: nothing more will come. What waits can still be taken.
  void Close() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    changed_.notify_all();
  }

  // For whoever takes: nothing more is wanted. What waits is gone. Takes no memory, as it happens
  // where there is none.
  void Abandon() {
    const std::lock_guard lock(mutex_);
    closed_ = true;
    things_.clear();
    changed_.notify_all();
  }

 private:
  const std::size_t capacity_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<Thing> things_;
  bool closed_ = false;
};

}  // namespace glimmerhost
