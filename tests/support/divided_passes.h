// SPDX-License-Identifier: BSD-3-Clause
// Divides an engine's passes as a test asks, and notes them.
#pragma once

#include <cstdint>
#include <functional>
#include <thread>
#include <utility>
#include <vector>

#include "fftlib/fftlib.h"

namespace lx_test {

class DividedPasses {
 public:
  explicit DividedPasses(int ways = 1, bool onThreads = false)
      : ways_(ways), onThreads_(onThreads) {}

  void Attach(lx::DefocusEngine* engine) { engine->SetParallelFor(this, ParallelFor); }

  std::vector<int> counts;                // of each pass since the last clear
  std::function<void(int pass)> onBegin;  // called ahead of each, with its place in counts

 private:
  static void ParallelFor(void* context, lx::PassFunction pass, std::int32_t count,
                          lx::DefocusEngine* engine) {
    auto* self = static_cast<DividedPasses*>(context);
    self->counts.push_back(count);
    if (self->onBegin) {
      self->onBegin(static_cast<int>(self->counts.size()) - 1);
    }
    std::vector<std::thread> running;
    // The last range first: no pass may count on an order.
    for (int way = self->ways_ - 1; way >= 0; --way) {
      const std::int32_t first = count * way / self->ways_;
      const std::int32_t last = count * (way + 1) / self->ways_ - 1;
      if (self->onThreads_) {
        running.emplace_back(pass, engine, first, last);
      } else {
        pass(engine, first, last);
      }
    }
    for (std::thread& thread : running) {
      thread.join();
    }
  }

  int ways_;
  bool onThreads_;
};

// Counts polls, and answers all from one on with "stop", or that one alone.
class PollCounter {
 public:
  explicit PollCounter(int stopAt = kNever, bool stopOnce = false)
      : stopAt_(stopAt), stopOnce_(stopOnce) {}

  // Runs passes in one go, as an engine does by itself: the polls' context comes from here.
  void Attach(lx::DefocusEngine* engine) {
    engine->SetParallelFor(this, [](void*, lx::PassFunction pass, std::int32_t count,
                                    lx::DefocusEngine* self) { pass(self, 0, count - 1); });
    engine->SetCancelQuery(nullptr, [](void* context) -> std::int32_t {
      auto* self = static_cast<PollCounter*>(context);
      const int poll = self->polls++;
      return poll == self->stopAt_ || (poll > self->stopAt_ && !self->stopOnce_) ? 1 : 0;
    });
  }

  int polls = 0;

 private:
  static constexpr int kNever = 1 << 30;

  int stopAt_;
  bool stopOnce_;
};

}  // namespace lx_test
