// SPDX-License-Identifier: BSD-3-Clause
// Threads that belong to one object: they start with its first work and end with it.
#pragma once

#include <atomic>
#include <condition_variable>
#include <cstdint>
#include <mutex>
#include <thread>
#include <vector>

#include "doors/library/glimmerblur.h"

namespace lx {

class WorkThreads {
 public:
  //   ways  the calling thread among them; 1 or more
  explicit WorkThreads(std::int32_t ways) : ways_(ways) {}
  ~WorkThreads();
  WorkThreads(const WorkThreads&) = delete;
  WorkThreads& operator=(const WorkThreads&) = delete;

  // Calls work(data, i) for 0 to count - 1, also on the calling thread, and returns when all calls
  // have. Where the system starts fewer threads, those do it. The work does not throw.
  void Run(std::int32_t count, glimmerblur_work work, void* data);

 private:
  void Start();
  void Live();
  void TakePieces();

  std::int32_t ways_;
  bool hasStarted_ = false;
  std::vector<std::thread> threads_;

  std::mutex mutex_;
  std::condition_variable begun_;
  std::condition_variable ended_;
  std::uint64_t turn_ = 0;  // of work; a thread that has seen a lower one has some to do
  std::size_t atWork_ = 0;  // threads that have not finished this turn
  bool isOver_ = false;
  std::atomic<std::int32_t> next_{0};
  std::int32_t count_ = 0;
  glimmerblur_work work_ = nullptr;
  void* data_ = nullptr;
};

}  // namespace lx
