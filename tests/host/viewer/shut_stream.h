// SPDX-License-Identifier: BSD-3-Clause
// Threads that wait for one another, and a module that hangs: its calls of the host are traced into
// a stream that is shut.
#pragma once

#include <condition_variable>
#include <mutex>
#include <streambuf>
#include <thread>

namespace viewer_test {

// Counts, and lets somebody wait for a number.
class Count {
 public:
  void Add() {
    const std::lock_guard lock(mutex_);
    ++count_;
    changed_.notify_all();
  }

  void WaitFor(int count) {
    std::unique_lock lock(mutex_);
    changed_.wait(lock, [&] { return count_ >= count; });
  }

 private:
  std::mutex mutex_;
  std::condition_variable changed_;
  int count_ = 0;
};

// A stream that lets nothing through while it is shut: who traces calls into it hangs.
class ShutStream : public std::streambuf {
 public:
  void Shut() {
    const std::lock_guard lock(mutex_);
    isShut_ = true;
  }

  // The calling thread goes through all the same.
  void ShutForOthers() {
    const std::lock_guard lock(mutex_);
    isShut_ = true;
    free_ = std::this_thread::get_id();
  }

  void Open() {
    const std::lock_guard lock(mutex_);
    isShut_ = false;
    changed_.notify_all();
  }

  Count entered;

 private:
  int overflow(int c) override {
    Pass();
    return c;
  }

  std::streamsize xsputn(const char* /*text*/, std::streamsize count) override {
    Pass();
    return count;
  }

  void Pass() {
    std::unique_lock lock(mutex_);
    if (free_ == std::this_thread::get_id()) {
      return;
    }
    if (isShut_) {
      entered.Add();
    }
    changed_.wait(lock, [this] { return !isShut_; });
  }

  std::mutex mutex_;
  std::condition_variable changed_;
  bool isShut_ = false;
  std::thread::id free_;
};

}  // namespace viewer_test
