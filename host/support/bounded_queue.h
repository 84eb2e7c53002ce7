// BoundedQueue: from one thread to another, with room for a few.
#pragma once

#include <condition_variable>
#include <cstddef>
#include <deque>
#include <mutex>
#include <optional>
#include <utility>

namespace glimmerhost {

template <class T>
class BoundedQueue {
 public:
  explicit BoundedQueue(std::size_t room) : room_(room) {}

  // Waits for room. False, and nothing is taken in, once the queue is closed.
  bool Push(T value) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || values_.size() < room_; });
    if (closed_) {
      return false;
    }
    values_.push_back(std::move(value));
    changed_.notify_all();
    return true;
  }

  // Waits for a value. None once the queue is closed and empty.
  std::optional<T> Pop() {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [this] { return closed_ || !values_.empty(); });
    if (values_.empty()) {
      return std::nullopt;
    }
    std::optional<T> value(std::move(values_.front()));
    values_.pop_front();
    changed_.notify_all();
    return value;
  }

  // Nothing more comes in; what is in comes out.
  void Close() {
    const std::scoped_lock hold(mutex_);
    closed_ = true;
    changed_.notify_all();
  }

 private:
  const std::size_t room_;
  std::mutex mutex_;
  std::condition_variable changed_;
  std::deque<T> values_;
  bool closed_ = false;
};

}  // namespace glimmerhost
