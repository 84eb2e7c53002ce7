// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/work_threads.h"

#include <system_error>

namespace lx {

WorkThreads::~WorkThreads() {
  {
    const std::scoped_lock hold(mutex_);
    isOver_ = true;
  }
  begun_.notify_all();
  for (std::thread& thread : threads_) {
    thread.join();
  }
}

void WorkThreads::Start() {
  hasStarted_ = true;
  threads_.reserve(static_cast<std::size_t>(ways_ - 1));
  try {
    while (threads_.size() + 1 < static_cast<std::size_t>(ways_)) {
      threads_.emplace_back([this] { Live(); });
    }
  } catch (const std::system_error&) {
    // Those that there are do the work.
  }
}

void WorkThreads::Run(std::int32_t count, glimmerblur_work work, void* data) {
  if (!hasStarted_) {
    Start();
  }
  {
    const std::scoped_lock hold(mutex_);
    next_.store(0, std::memory_order_relaxed);
    count_ = count;
    work_ = work;
    data_ = data;
    atWork_ = threads_.size();
    ++turn_;
  }
  begun_.notify_all();
  TakePieces();
  std::unique_lock hold(mutex_);
  ended_.wait(hold, [this] { return atWork_ == 0; });
}

void WorkThreads::Live() {
  std::uint64_t seen = 0;
  std::unique_lock hold(mutex_);
  for (;;) {
    begun_.wait(hold, [&] { return isOver_ || turn_ != seen; });
    if (isOver_) {
      return;
    }
    seen = turn_;
    hold.unlock();
    TakePieces();
    hold.lock();
    if (--atWork_ == 0) {
      ended_.notify_one();
    }
  }
}

void WorkThreads::TakePieces() {
  for (;;) {
    const std::int32_t i = next_.fetch_add(1, std::memory_order_relaxed);
    if (i >= count_) {
      return;
    }
    work_(data_, i);
  }
}

}  // namespace lx
