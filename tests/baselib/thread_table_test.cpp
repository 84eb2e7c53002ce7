// SPDX-License-Identifier: BSD-3-Clause
#include <gtest/gtest.h>

#include <atomic>
#include <cstdint>
#include <string>
#include <vector>

#include "baselib/threads/module_state.h"
#include "baselib/threads/pool.h"
#include "tests/support/logged_lines.h"
#include "tests/support/platform_recorder.h"

namespace {

using lx::pool_state;
using lx::PoolWord;
using lx_test::LoggedLines;
using lx_test::PlatformRecorder;
using testing::internal::CaptureStderr;

using Log = std::vector<std::string>;

// A thread that stays until its event is set, or it is told to end.
std::int32_t WaitFor(PoolWord event) {
  auto* handle = reinterpret_cast<lx::EventHandle>(event);
  lx::SystemPlatform().waitForEvents(1, &handle);
  return 0;
}

class ThreadTable : public testing::Test {
 public:
  ThreadTable() : event(lx::SystemPlatform().createEvent()) {}
  ~ThreadTable() override {
    for (const std::int32_t id : ids) {
      lx::mp_kill_thread(id);
    }
    lx::SystemPlatform().destroyEvent(event);
  }

  std::int32_t Spawn() {
    ids.push_back(lx::mp_spawn_thread(WaitFor, reinterpret_cast<PoolWord>(event)));
    return ids.back();
  }

  // Until the threads have given their rows back.
  static void AwaitThreads(std::int32_t count) {
    for (;;) {
      lx::SystemPlatform().enterLock(pool_state().tableLock);
      const std::int32_t now = pool_state().threadCount;
      lx::SystemPlatform().leaveLock(pool_state().tableLock);
      if (now == count) {
        return;
      }
    }
  }

  PlatformRecorder platform;
  lx::EventHandle event;
  std::vector<std::int32_t> ids;
};

TEST_F(ThreadTable, SetsUpBeforeItsFirstThreadInOrder) {
  Spawn();
  EXPECT_EQ((Log{"allocate", "initialize lock table", "allocate", "initialize lock dispatch",
                 "extend float precision", "read float control", "processors", "enter table",
                 "begin thread stack 1048576 flags 0", "leave table"}),
            platform.Log());
}

TEST_F(ThreadTable, KeepsWhatItWasGivenInTheFirstFreeRow) {
  lx::SystemPlatform().setThreadPriority(lx::SystemPlatform().currentThread(), 1);
  const std::int32_t id = Spawn();
  lx::SystemPlatform().setThreadPriority(lx::SystemPlatform().currentThread(), 0);

  const lx::MPThreadSlot& row = pool_state().threads[0];
  EXPECT_EQ(1, row.in_use);
  EXPECT_EQ(WaitFor, row.entry);
  EXPECT_EQ(reinterpret_cast<PoolWord>(event), row.argument);
  EXPECT_EQ(static_cast<std::uint32_t>(id), row.thread_id);
  EXPECT_NE(nullptr, row.handle);
  EXPECT_EQ(1, row.priority);
  EXPECT_EQ(1, pool_state().threadCount);
  EXPECT_EQ(row.handle, lx::mp_thread_handle(id));
}

TEST_F(ThreadTable, GivesARowBackWhenItsThreadEnds) {
  Spawn();
  Spawn();
  lx::SystemPlatform().setEvent(event);
  AwaitThreads(0);
  EXPECT_EQ(0, pool_state().threads[0].in_use);
  EXPECT_EQ(0, pool_state().threads[1].in_use);
  // The rows are taken again, from the first.
  lx::SystemPlatform().resetEvent(event);
  Spawn();
  EXPECT_EQ(1, pool_state().threads[0].in_use);
  EXPECT_EQ(0, pool_state().threads[1].in_use);
}

TEST_F(ThreadTable, HasThirtyTwoRows) {
  for (int i = 0; i < 32; ++i) {
    ASSERT_GT(Spawn(), 0);
  }
  CaptureStderr();
  EXPECT_EQ(-1, lx::mp_spawn_thread(WaitFor, 0));
  EXPECT_EQ("(LX LIB) WARN : MP: Maximum number of thread's reached !!\n", LoggedLines());
  EXPECT_EQ(32, pool_state().threadCount);
}

// Intended.
TEST_F(ThreadTable, LosesTheRowOfAThreadThatCannotBeMade) {
  platform.RefuseThread(1);
  EXPECT_EQ(-1, Spawn());
  EXPECT_EQ(1, pool_state().threads[0].in_use);
  EXPECT_EQ(0, pool_state().threadCount);
  EXPECT_GT(Spawn(), 0);
  EXPECT_EQ(static_cast<std::uint32_t>(ids.back()), pool_state().threads[1].thread_id);
  for (int i = 0; i < 30; ++i) {
    ASSERT_GT(Spawn(), 0);
  }
  CaptureStderr();
  EXPECT_EQ(-1, lx::mp_spawn_thread(WaitFor, 0));
  EXPECT_NE("", LoggedLines());
}

TEST_F(ThreadTable, TakesALostRowForNoThread) {
  platform.RefuseThread(1);
  Spawn();
  for (const std::int32_t id : {-1, 0}) {
    EXPECT_EQ(nullptr, lx::mp_thread_handle(id));
    lx::mp_kill_thread(id);
  }
  EXPECT_EQ(0, platform.Count("terminate"));
  EXPECT_EQ(1, pool_state().threads[0].in_use);
}

TEST_F(ThreadTable, KnowsNoHandleOfAThreadItDoesNotHave) {
  EXPECT_EQ(nullptr, lx::mp_thread_handle(1));
  const std::int32_t id = Spawn();
  EXPECT_EQ(nullptr, lx::mp_thread_handle(id + 1000));
  lx::mp_kill_thread(id);
  EXPECT_EQ(nullptr, lx::mp_thread_handle(id));
}

TEST_F(ThreadTable, KillsUnderBothLocksInOrder) {
  const std::int32_t id = Spawn();
  platform.Clear();

  lx::mp_kill_thread(id);

  const std::string name = std::to_string(id);
  EXPECT_EQ((Log{"enter table", "enter dispatch", "terminate " + name + " code 0", "close " + name,
                 "leave dispatch", "leave table"}),
            platform.Log());
  EXPECT_EQ(0, pool_state().threadCount);
  EXPECT_EQ(0, pool_state().threads[0].in_use);
}

TEST_F(ThreadTable, DoesNothingForAThreadItDoesNotHave) {
  const std::int32_t id = Spawn();
  platform.Clear();
  lx::mp_kill_thread(id + 1000);
  EXPECT_EQ((Log{"enter table", "enter dispatch", "leave dispatch", "leave table"}),
            platform.Log());
  EXPECT_EQ(1, pool_state().threadCount);
}

TEST_F(ThreadTable, KillsNothingBeforeItIsSetUp) {
  lx::mp_kill_thread(1);
  EXPECT_EQ(Log{}, platform.Log());
}

TEST_F(ThreadTable, ReleasesTheRowAlsoWhereKillingFails) {
  const std::int32_t first = Spawn();
  const std::int32_t second = Spawn();
  platform.RefuseTerminate();
  platform.RefuseClose();
  CaptureStderr();
  lx::mp_kill_thread(second);
  lx::mp_kill_thread(first);
  EXPECT_EQ("(LX LIB) WARN : MP: Can't terminate thread(1): " + std::to_string(second) +
                "\n"
                "(LX LIB) WARN : MP: Can't close thread(1): " +
                std::to_string(second) +
                "\n"
                "(LX LIB) WARN : MP: Can't terminate thread(0): " +
                std::to_string(first) +
                "\n"
                "(LX LIB) WARN : MP: Can't close thread(0): " +
                std::to_string(first) + "\n",
            LoggedLines());
  EXPECT_EQ(0, pool_state().threadCount);
  EXPECT_EQ(0, pool_state().threads[0].in_use);
}

TEST_F(ThreadTable, StartsAThreadWithItsCreatorsPriorityAndTheSavedWord) {
  lx::SystemPlatform().setThreadPriority(lx::SystemPlatform().currentThread(), 2);
  Spawn();
  lx::SystemPlatform().setThreadPriority(lx::SystemPlatform().currentThread(), 0);
  lx::SystemPlatform().setEvent(event);
  AwaitThreads(0);
  while (platform.ThreadCount("end thread") < 1) {
  }
  EXPECT_EQ(
      (Log{"priority self 2", "write float control", "enter table", "leave table", "end thread 0"}),
      platform.ThreadLog());
}

TEST_F(ThreadTable, EndsAThreadWithoutARowOrAFunctionAtOnce) {
  EXPECT_EQ(0U, lx::mp_thread_start(nullptr));
  lx::MPThreadSlot row{};
  row.in_use = 1;
  EXPECT_EQ(0U, lx::mp_thread_start(&row));
  EXPECT_EQ((Log{"end thread 0", "end thread 0"}), platform.Log());
  EXPECT_EQ(1, row.in_use);
}

// A thread that is about to give its row back while another one kills it: one of the two
// does, and neither waits for the other.
TEST_F(ThreadTable, IsKeptRightByThreadsThatEndWhileTheyAreKilled) {
  for (int round = 0; round < 200; ++round) {
    const std::int32_t id =
        lx::mp_spawn_thread([](PoolWord) { return std::int32_t{0}; }, PoolWord{0});
    ASSERT_GT(id, 0);
    lx::mp_kill_thread(id);
    AwaitThreads(0);
    ASSERT_EQ(0, pool_state().threads[0].in_use);
  }
}

}  // namespace
