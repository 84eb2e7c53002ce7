// SPDX-License-Identifier: BSD-3-Clause
// Runs the engine's passes over threads, in blocks of rows, and asks the caller after each block
// whether to go on.
#pragma once

#include <atomic>
#include <cstdint>
#include <thread>

#include "doors/library/glimmerblur.h"
#include "doors/library/work_threads.h"
#include "fftlib/core/rows.h"

namespace lx {

class PassRunner {
 public:
  //   parallelFor  the caller's; null works with threads of its own
  PassRunner(std::int32_t ways, glimmerblur_parallel_for parallelFor, void* parallelUser);
  PassRunner(const PassRunner&) = delete;
  PassRunner& operator=(const PassRunner&) = delete;

  void SetProgress(glimmerblur_progress progress, void* user) {
    progress_ = progress;
    progressUser_ = user;
  }

  // For a render on the calling thread of as many jobs of about as many passes. More passes than
  // foreseen hardly move the progress.
  void Begin(std::int32_t jobs, std::int32_t passesOfAJob);
  void NextJob();

  // Whether the caller wishes no more; what passes did since then means nothing.
  bool IsCancelled() const { return isCancelled_.load(std::memory_order_relaxed); }

  // Tells of the end, for the last time: what is run from now on is not asked about.
  void Finish();

  // What passes are run on.
  Rows* GetRows() { return &rows_; }

 private:
  static void Divide(void* owner, std::int32_t count);
  static void DoBlock(void* owner, std::int32_t block);
  void Ask(double ofPass);

  WorkThreads threads_;
  std::int32_t ways_;
  glimmerblur_parallel_for parallelFor_;
  void* parallelUser_;
  glimmerblur_progress progress_ = nullptr;
  void* progressUser_ = nullptr;
  Rows rows_;

  std::thread::id caller_;
  std::atomic<bool> isCancelled_{false};
  std::int32_t jobs_ = 1;
  std::int32_t job_ = 0;
  std::int32_t passes_ = 1;
  std::int32_t pass_ = 0;
  double told_ = 0.0;
  bool isAsking_ = false;

  // The pass in work.
  std::int32_t count_ = 0;
  std::int32_t blockRows_ = 1;
  std::int32_t blocks_ = 0;
  std::atomic<std::int32_t> blocksDone_{0};
};

}  // namespace lx
