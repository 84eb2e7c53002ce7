// SPDX-License-Identifier: BSD-3-Clause
// Watchdog: ends the process, and says why, if a scope is not left for minutes. No test passes or
// fails by how long it took; one that hangs would otherwise say nothing of the file that it hangs
// at.
#pragma once

#include <chrono>
#include <condition_variable>
#include <cstdio>
#include <cstdlib>
#include <mutex>
#include <string>
#include <thread>
#include <utility>

namespace lx_test {

class Watchdog {
 public:
  //   what  is being done
  explicit Watchdog(std::string what) : what_(std::move(what)), thread_([this] { Watch(); }) {}

  ~Watchdog() {
    {
      const std::lock_guard<std::mutex> guard(lock_);
      done_ = true;
    }
    left_.notify_one();
    thread_.join();
  }
  Watchdog(const Watchdog&) = delete;
  Watchdog& operator=(const Watchdog&) = delete;

 private:
  void Watch() {
    std::unique_lock<std::mutex> guard(lock_);
    if (!left_.wait_for(guard, std::chrono::minutes(3), [this] { return done_; })) {
      std::fprintf(stderr, "%s: it hangs\n", what_.c_str());
      std::abort();
    }
  }

  std::string what_;
  std::mutex lock_;
  std::condition_variable left_;
  bool done_ = false;
  std::thread thread_;  // the last: it uses all others
};

}  // namespace lx_test
