// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/newest_worker.h"

#include <gtest/gtest.h>

#include <future>
#include <memory>
#include <vector>

namespace glimmerhost {
namespace {

// Work that stands still until it is let go.
struct Gate {
  std::promise<void> entered;
  std::promise<void> open;
};

TEST(NewestWorker, LeavesOutAllThatWaitedButTheNewest) {
  Gate gate;
  std::promise<void> last;
  std::vector<int> worked;
  {
    NewestWorker<int> worker([&](int request) {
      worked.push_back(request);
      if (request == 1) {
        gate.entered.set_value();
        gate.open.get_future().wait();
      } else if (request == 4) {
        last.set_value();
      }
    });
    worker.Ask(1);
    gate.entered.get_future().wait();
    worker.Ask(2);
    worker.Ask(3);
    worker.Ask(4);
    gate.open.set_value();
    last.get_future().wait();
  }
  EXPECT_EQ(worked, (std::vector<int>{1, 4}));
}

TEST(NewestWorker, DropsWhatWaitsAtItsEndAndFinishesWhatIsInHand) {
  Gate gate;
  std::vector<int> worked;
  {
    NewestWorker<int> worker([&](int request) {
      gate.entered.set_value();
      gate.open.get_future().wait();
      worked.push_back(request);
    });
    worker.Ask(1);
    gate.entered.get_future().wait();
    worker.Ask(2);
    EXPECT_FALSE(worker.IsIdle());
    worker.Abandon();
    gate.open.set_value();
    while (!worker.IsIdle()) {
      std::this_thread::yield();
    }
  }
  EXPECT_EQ(worked, std::vector<int>{1});
}

TEST(NewestWorker, LeavesWorkThatHangsToItself) {
  auto gate = std::make_shared<Gate>();
  auto ended = std::make_shared<std::promise<void>>();
  {
    NewestWorker<int> worker([gate, ended](int) {
      gate->entered.set_value();
      gate->open.get_future().wait();
      ended->set_value();
    });
    worker.Ask(1);
    gate->entered.get_future().wait();
    worker.Abandon();
  }
  // The worker is gone and its work is not.
  gate->open.set_value();
  ended->get_future().wait();
}

}  // namespace
}  // namespace glimmerhost
