// SPDX-License-Identifier: BSD-3-Clause
#include "baselib/threads/pool.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <atomic>
#include <cstddef>
#include <cstdint>
#include <mutex>
#include <semaphore>
#include <set>
#include <string>
#include <thread>
#include <vector>

#include "baselib/platform/float_control.h"
#include "baselib/threads/module_state.h"
#include "baselib/threads/parallel_rows.h"
#include "baselib/utils/log.h"
#include "tests/support/flushing_bits.h"
#include "tests/support/fresh_services.h"
#include "tests/support/logged_lines.h"
#include "tests/support/platform_recorder.h"
#include "tests/support/tracked_heap.h"

namespace {

using lx::pool_state;
using lx::PoolWord;
using lx_test::LoggedLines;
using lx_test::PlatformRecorder;
using testing::internal::CaptureStderr;

using Log = std::vector<std::string>;

Log Beginning(const Log& log, std::size_t count) {
  return {log.begin(), log.begin() + static_cast<std::ptrdiff_t>(std::min(count, log.size()))};
}

// The ways that a pass came to, with what each got.
struct Visits {
  std::mutex mutex;
  std::vector<std::int32_t> ways;
  std::vector<std::array<PoolWord, 6>> args;
};

std::int32_t Visit(PoolWord visits, PoolWord a2, PoolWord a3, PoolWord a4, PoolWord a5,
                   PoolWord a6) {
  auto* all = reinterpret_cast<Visits*>(visits);
  const std::scoped_lock hold(all->mutex);
  all->ways.push_back(lx::mp_worker_index());
  all->args.push_back({visits, a2, a3, a4, a5, a6});
  return 42;
}

std::int32_t Pass(Visits* visits) {
  return lx::mp_run(Visit, reinterpret_cast<PoolWord>(visits), 0, 0, 0, 0, 0);
}

std::int32_t Nothing(PoolWord, PoolWord, PoolWord, PoolWord, PoolWord, PoolWord) { return 7; }

std::int32_t EmptyPass() { return lx::mp_run(Nothing, 0, 0, 0, 0, 0, 0); }

struct Range {
  std::int32_t way;
  std::int32_t first;
  std::int32_t last;
  bool operator==(const Range&) const = default;
  bool operator<(const Range& other) const { return way < other.way; }
};

std::ostream& operator<<(std::ostream& out, const Range& range) {
  return out << range.way << ": (" << range.first << ", " << range.last << ")";
}

class Rows {
 public:
  void Work(std::int32_t first, std::int32_t last) {
    const std::scoped_lock hold(mutex_);
    ranges_.push_back({lx::mp_worker_index(), first, last});
  }

  std::vector<Range> InOrderOfWays() {
    std::sort(ranges_.begin(), ranges_.end());
    return ranges_;
  }

  // How often each row was done.
  std::vector<int> Coverage(std::int32_t rows) const {
    std::vector<int> counts(static_cast<std::size_t>(rows), 0);
    for (const Range& range : ranges_) {
      for (std::int32_t y = range.first; y <= range.last; ++y) {
        ++counts.at(static_cast<std::size_t>(y));
      }
    }
    return counts;
  }

 private:
  std::mutex mutex_;
  std::vector<Range> ranges_;
};

std::vector<Range> Divide(std::int32_t rows, std::int32_t ways) {
  PlatformRecorder platform;
  platform.SetProcessors(ways);
  Rows work;
  lx::mp_parallel_rows(work, &Rows::Work, rows);
  return work.InOrderOfWays();
}

// --- Rows ---

TEST(ParallelRows, OnOneProcessorAreOneCallAndNothingElse) {
  PlatformRecorder platform;
  platform.SetProcessors(1);
  Rows work;

  lx::mp_parallel_rows(work, &Rows::Work, 100);
  lx::mp_parallel_rows(work, &Rows::Work, 100);

  EXPECT_EQ((std::vector<Range>{{0, 0, 99}, {0, 0, 99}}), work.InOrderOfWays());
  EXPECT_EQ((Log{"processors"}), platform.Log());
}

TEST(ParallelRows, GiveTheLastWayWhatRemains) {
  EXPECT_EQ((std::vector<Range>{{0, 0, 269}, {1, 270, 539}, {2, 540, 809}, {3, 810, 1079}}),
            Divide(1080, 4));
  EXPECT_EQ((std::vector<Range>{{0, 0, 269}, {1, 270, 539}, {2, 540, 809}, {3, 810, 1080}}),
            Divide(1081, 4));
}

TEST(ParallelRows, FewerThanWaysAllGoToTheFirst) {
  EXPECT_EQ((std::vector<Range>{{0, 0, 2}, {1, 3, 2}, {2, 3, 2}, {3, 3, 2}}), Divide(3, 4));
}

TEST(ParallelRows, OfWhichThereAreNoneStillCallEveryWay) {
  EXPECT_EQ((std::vector<Range>{{0, 0, -1}, {1, 0, -1}}), Divide(0, 2));
}

TEST(ParallelRows, OfANegativeCountAreEmptyOnEveryWay) {
  EXPECT_EQ((std::vector<Range>{{0, 0, -6}, {1, -5, -6}, {2, -5, -6}}), Divide(-5, 3));
}

TEST(ParallelRows, CoverEveryRowOnceAtAnyNumberOfWays) {
  for (std::int32_t ways = 1; ways <= 33; ++ways) {
    PlatformRecorder platform;
    platform.SetProcessors(ways);
    for (std::int32_t rows = 0; rows <= 200; ++rows) {
      Rows work;
      lx::mp_parallel_rows(work, &Rows::Work, rows);
      ASSERT_EQ(std::vector<int>(static_cast<std::size_t>(rows), 1), work.Coverage(rows))
          << rows << " rows over " << ways;
    }
  }
}

// The ways were counted before the pool failed to start.
TEST(ParallelRows, AreAllDoneByTheCallerWhereThePoolCannotStart) {
  PlatformRecorder platform;
  platform.SetProcessors(34);
  Rows work;
  CaptureStderr();

  lx::mp_parallel_rows(work, &Rows::Work, 100);

  const std::string lines = LoggedLines();
  EXPECT_EQ((std::vector<Range>{{0, 0, 99}}), work.InOrderOfWays());
  EXPECT_EQ(
      "(LX LIB) WARN : MP: Maximum number of thread's reached !!\n"
      "(LX LIB) ERROR: Can't create MP thread: 32\n",
      lines);
  EXPECT_EQ(32, platform.Count("terminate"));
  EXPECT_EQ(32, platform.Count("close"));
  EXPECT_EQ(1, lx::mp_num_ways());
  EXPECT_EQ(0, pool_state().threadCount);
  EXPECT_NE(nullptr, pool_state().workers.load());
}

TEST(ParallelRows, StayOnTheCallerAfterAFailedStart) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  platform.RefuseSlot();
  CaptureStderr();
  Rows first;
  lx::mp_parallel_rows(first, &Rows::Work, 10);
  LoggedLines();
  platform.Clear();
  Rows second;

  lx::mp_parallel_rows(second, &Rows::Work, 10);

  EXPECT_EQ((std::vector<Range>{{0, 0, 9}}), second.InOrderOfWays());
  EXPECT_EQ(Log{}, platform.Log());
}

// --- Ways ---

TEST(PoolWays, AreTheProcessorsAskedOnce) {
  PlatformRecorder platform;
  platform.SetProcessors(5);
  EXPECT_EQ(5, lx::mp_num_ways());
  platform.SetProcessors(7);
  EXPECT_EQ(5, lx::mp_num_ways());
  EXPECT_EQ((Log{"processors"}), platform.Log());
  EXPECT_EQ(5, pool_state().defaultWays);
}

TEST(PoolWays, OfNoProcessorsAreAskedForAgainAndRunOnTheCaller) {
  PlatformRecorder platform;
  platform.SetProcessors(0);
  EXPECT_EQ(0, lx::mp_num_ways());
  EXPECT_EQ(0, lx::mp_num_ways());
  EXPECT_EQ(2, platform.Count("processors"));
  Rows work;
  lx::mp_parallel_rows(work, &Rows::Work, 10);
  EXPECT_EQ((std::vector<Range>{{0, 0, 9}}), work.InOrderOfWays());
}

// Nobody has said how many ways there are, and one is what it then stays at.
TEST(PoolWays, AreOneForGoodWhereAPassComesFirst) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  EXPECT_EQ(7, EmptyPass());
  EXPECT_EQ(1, lx::mp_num_ways());
  EXPECT_EQ(7, EmptyPass());
  EXPECT_EQ(Log{}, platform.Log());
}

// --- Passes ---

TEST(PoolPass, GivesTheFunctionsResultWhereTheCallerIsAlone) {
  PlatformRecorder platform;
  platform.SetProcessors(1);
  lx::mp_num_ways();
  EXPECT_EQ(7, EmptyPass());
}

TEST(PoolPass, DropsTheResultWhereWorkersTakePart) {
  PlatformRecorder platform;
  platform.SetProcessors(2);
  lx::mp_num_ways();
  EXPECT_EQ(0, EmptyPass());
}

TEST(PoolPass, RunsEachWayOnceWithAllSixArguments) {
  PlatformRecorder platform;
  platform.SetProcessors(7);
  lx::mp_num_ways();
  Visits visits;
  // Wider than 32 bits.
  const PoolWord big = PoolWord{0x7FEDCBA987654321};
  const std::array<PoolWord, 6> args = {
      reinterpret_cast<PoolWord>(&visits), big, -big, big + 1, -1, 0};

  lx::mp_run(Visit, args[0], args[1], args[2], args[3], args[4], args[5]);

  EXPECT_EQ((std::set<std::int32_t>{0, 1, 2, 3, 4, 5, 6}),
            std::set<std::int32_t>(visits.ways.begin(), visits.ways.end()));
  EXPECT_EQ(7U, visits.ways.size());
  for (const auto& got : visits.args) {
    EXPECT_EQ(args, got);
  }
}

TEST(PoolPass, RunsAThousandTimesWithoutLosingAWay) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  lx::mp_num_ways();
  std::atomic<int> calls{0};
  const auto count = [](PoolWord to, PoolWord, PoolWord, PoolWord, PoolWord, PoolWord) {
    ++*reinterpret_cast<std::atomic<int>*>(to);
    return 0;
  };
  for (int pass = 1; pass <= 1000; ++pass) {
    lx::mp_run(count, reinterpret_cast<PoolWord>(&calls), 0, 0, 0, 0, 0);
    ASSERT_EQ(4 * pass, calls);
  }
}

// Plain memory: the thread sanitizer sees whether a pass orders it.
TEST(PoolPass, MakesEveryWaysWritesVisible) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  lx::mp_num_ways();
  int cells[4] = {};
  const auto add = [](PoolWord to, PoolWord, PoolWord, PoolWord, PoolWord, PoolWord) {
    reinterpret_cast<int*>(to)[lx::mp_worker_index()] += 1;
    return 0;
  };
  for (int pass = 1; pass <= 100; ++pass) {
    lx::mp_run(add, reinterpret_cast<PoolWord>(cells), 0, 0, 0, 0, 0);
    ASSERT_EQ(4 * pass, cells[0] + cells[1] + cells[2] + cells[3]);
  }
}

TEST(PoolPass, DoesEachStepOfTheHandOverInOrder) {
  PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();
  EmptyPass();
  platform.Clear();

  EmptyPass();

  EXPECT_EQ((Log{"enter dispatch", "read float control", "reset done 1", "set start 1",
                 "reset done 2", "set start 2", "wait 2: done 1, done 2", "leave dispatch"}),
            platform.Log());
}

TEST(PoolPass, FindsItsArgumentsAndFunctionInTheRecordBeforeAWorkerIsWoken) {
  PlatformRecorder platform;
  platform.SetProcessors(2);
  lx::mp_num_ways();
  EmptyPass();
  static const lx::MPWorker* record = nullptr;
  static const lx::Platform* recorder = nullptr;
  static bool ready = false;
  record = pool_state().workers;
  recorder = &lx::GetPlatform();
  EXPECT_EQ(nullptr, record->entry);  // the worker has cleared it
  lx::Platform watching = *recorder;
  watching.setEvent = [](lx::EventHandle event) {
    if (event == record->startEvent) {
      ready = record->entry == Nothing && record->args[0] == 11 && record->args[5] == 16;
    }
    recorder->setEvent(event);
  };
  const lx::ScopedPlatform scope(&watching);

  lx::mp_run(Nothing, 11, 12, 13, 14, 15, 16);

  EXPECT_TRUE(ready);
}

TEST(PoolPass, OfAnotherThreadWaits) {
  PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();
  struct Shared {
    std::atomic<int> inside{0};
    std::atomic<int> mostInside{0};
    std::atomic<int> calls{0};
  } shared;
  const auto enter = [](PoolWord to, PoolWord, PoolWord, PoolWord, PoolWord, PoolWord) {
    auto* all = reinterpret_cast<Shared*>(to);
    // Each pass has three ways; a second pass at the same time would make it more.
    const int now = ++all->inside;
    all->mostInside = std::max<int>(all->mostInside, now);
    ++all->calls;
    std::this_thread::yield();
    --all->inside;
    return 0;
  };
  std::vector<std::thread> dispatchers;
  for (int i = 0; i < 4; ++i) {
    dispatchers.emplace_back([&] {
      for (int pass = 0; pass < 100; ++pass) {
        lx::mp_run(enter, reinterpret_cast<PoolWord>(&shared), 0, 0, 0, 0, 0);
      }
    });
  }
  for (std::thread& dispatcher : dispatchers) {
    dispatcher.join();
  }
  EXPECT_EQ(4 * 100 * 3, shared.calls);
  EXPECT_LE(shared.mostInside, 3);
}

TEST(PoolPass, MayComeFirstFromSeveralThreadsAtOnce) {
  for (int round = 0; round < 20; ++round) {
    PlatformRecorder platform;
    platform.SetProcessors(3);
    std::vector<std::thread> threads;
    std::atomic<int> rowsDone{0};
    struct Count {
      std::atomic<int>* to;
      void Work(std::int32_t first, std::int32_t last) { *to += last - first + 1; }
    };
    for (int i = 0; i < 4; ++i) {
      threads.emplace_back([&] {
        Count count{&rowsDone};
        lx::mp_parallel_rows(count, &Count::Work, 100);
      });
    }
    for (std::thread& thread : threads) {
      thread.join();
    }
    EXPECT_EQ(400, rowsDone);
    EXPECT_EQ(2, platform.ThreadCount("begin thread"));
  }
}

TEST(PoolPass, KeepsAWayOfZeroForThreadsOutsideThePool) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  EXPECT_EQ(0, lx::mp_worker_index());
  lx::mp_num_ways();
  EXPECT_EQ(0, lx::mp_worker_index());
  EmptyPass();
  std::int32_t outside = -1;
  std::thread([&] { outside = lx::mp_worker_index(); }).join();
  EXPECT_EQ(0, outside);
  EXPECT_EQ(0, lx::mp_worker_index());
}

// --- The floating-point control word ---

TEST(PoolFloatControl, IsMendedWithOneWarningAPassWhereTheHostChangedIt) {
  if (kFlushingBits == 0) {
    GTEST_SKIP() << "a processor without a word to change";
  }
  PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();
  EmptyPass();
  const std::uint32_t saved = lx::native::FloatControl();
  for (int pass = 0; pass < 2; ++pass) {
    lx::native::SetFloatControl(saved ^ kFlushingBits);
    ASSERT_NE(saved, lx::native::FloatControl());
    CaptureStderr();
    EmptyPass();
    EXPECT_EQ("(LX LIB) WARN : FPU setup changed un-expected..\n", LoggedLines());
    EXPECT_EQ(saved, lx::native::FloatControl());
  }
  CaptureStderr();
  EmptyPass();
  EXPECT_EQ("", LoggedLines());
}

TEST(PoolFloatControl, IsTheSavedOneOnEveryWay) {
  if (kFlushingBits == 0) {
    GTEST_SKIP() << "a processor without a word to change";
  }
  PlatformRecorder platform;
  platform.SetProcessors(4);
  lx::mp_num_ways();
  EmptyPass();
  const std::uint32_t saved = lx::native::FloatControl();
  struct {
    std::uint32_t found, left;
  } words[4] = {};
  const auto spoil = [](PoolWord to, PoolWord, PoolWord, PoolWord, PoolWord, PoolWord) {
    auto& word = reinterpret_cast<decltype(&words[0])>(to)[lx::mp_worker_index()];
    word.found = lx::native::FloatControl();
    // What a row function leaves behind is mended before the next one.
    lx::native::SetFloatControl(word.found ^ kFlushingBits);
    word.left = lx::native::FloatControl();
    return 0;
  };
  CaptureStderr();
  for (int pass = 0; pass < 2; ++pass) {
    lx::mp_run(spoil, reinterpret_cast<PoolWord>(words), 0, 0, 0, 0, 0);
    for (const auto& [found, left] : words) {
      EXPECT_EQ(saved, found);
      EXPECT_NE(saved, left);
    }
  }
  LoggedLines();
  lx::native::SetFloatControl(saved);
}

TEST(PoolFloatControl, IsNotChangedByWhatArithmeticRaises) {
  const std::uint32_t before = lx::native::FloatControl();
  volatile double three = 3.0;
  volatile double third = 1.0 / three;
  EXPECT_GT(third, 0.0);
  EXPECT_EQ(before, lx::native::FloatControl());
}

// --- The start ---

TEST(PoolStart, MakesSlotThenEachWorkersEventsAndThread) {
  PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();

  EmptyPass();

  const Log log = platform.Log();
  const Log expected = {"processors",
                        "allocate",
                        "initialize lock table",
                        "allocate",
                        "initialize lock dispatch",
                        "extend float precision",
                        "read float control",
                        "processors",
                        "allocate slot",
                        "allocate",
                        "create event",
                        "create event",
                        "enter table",
                        "begin thread stack 1048576 flags 0",
                        "leave table",
                        "enter table",
                        "leave table",
                        "create event",
                        "create event",
                        "enter table",
                        "begin thread stack 1048576 flags 0",
                        "leave table",
                        "enter table",
                        "leave table",
                        "enter dispatch"};
  EXPECT_EQ(expected, Beginning(log, expected.size()));
}

TEST(PoolStart, HappensOnce) {
  PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();
  EmptyPass();
  EmptyPass();
  EXPECT_EQ(2, platform.Count("begin thread"));
  EXPECT_EQ(2, platform.Count("initialize lock"));
  EXPECT_EQ(1, platform.Count("extend float precision"));
}

TEST(PoolStart, FillsTheRecordOfEachWorker) {
  PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();
  EmptyPass();
  std::set<std::int32_t> ids;
  for (std::int32_t i = 0; i < 2; ++i) {
    const lx::MPWorker& worker = pool_state().workers.load()[i];
    EXPECT_EQ(i + 1, worker.index);
    EXPECT_GT(worker.thread_id, 0);
    EXPECT_EQ(lx::mp_thread_handle(worker.thread_id), worker.handle);
    EXPECT_NE(nullptr, worker.handle);
    ids.insert(worker.thread_id);
  }
  EXPECT_EQ(2U, ids.size());
}

TEST(PoolStart, TellsItsWaysOnlyBehindAnEarlierMessage) {
  {
    PlatformRecorder platform;
    platform.SetProcessors(2);
    lx::mp_num_ways();
    CaptureStderr();
    lx::log_message(lx::kLogInfo, "earlier");
    EmptyPass();
  }
  EXPECT_EQ(
      "(LX LIB) INFO : earlier\n"
      "(LX LIB)                  : Initialize 2-way multiprocessing\n",
      LoggedLines());
}

TEST(PoolStart, WithoutASlotStaysAtOneWay) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  platform.RefuseSlot();
  lx::mp_num_ways();
  CaptureStderr();
  EXPECT_EQ(7, EmptyPass());
  EXPECT_EQ("(LX LIB) ERROR: Can't allocate thread local storage..\n", LoggedLines());
  EXPECT_EQ(1, lx::mp_num_ways());
  EXPECT_EQ(nullptr, pool_state().workers.load());
}

TEST(PoolStart, WithoutMemoryForItsRecordsStaysAtOneWaySilently) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  platform.RefuseAllocation(3);  // after the two locks
  lx::mp_num_ways();
  CaptureStderr();
  EXPECT_EQ(7, EmptyPass());
  EXPECT_EQ("", LoggedLines());
  EXPECT_EQ(1, lx::mp_num_ways());
}

TEST(PoolStart, WithoutMemoryForALockStaysAtOneWay) {
  for (const int lock : {1, 2}) {
    PlatformRecorder platform;
    platform.SetProcessors(4);
    platform.RefuseAllocation(lock);
    lx::mp_num_ways();
    EXPECT_EQ(7, EmptyPass());
    EXPECT_EQ(1, lx::mp_num_ways());
    EXPECT_EQ(0, platform.Count("begin thread"));
  }
}

TEST(PoolStart, ThatLosesAThreadKillsThoseBeforeItLastFirst) {
  PlatformRecorder platform;
  platform.SetProcessors(5);
  platform.RefuseThread(4);
  lx::mp_num_ways();
  CaptureStderr();

  EXPECT_EQ(7, EmptyPass());

  EXPECT_EQ("(LX LIB) ERROR: Can't create MP thread: 3\n", LoggedLines());
  Log kills;
  for (const std::string& entry : platform.Log()) {
    if (entry.starts_with("terminate") || entry.starts_with("close")) {
      kills.push_back(entry);
    }
  }
  const lx::MPWorker* workers = pool_state().workers;
  ASSERT_NE(nullptr, workers);
  Log expected;
  for (int i = 2; i >= 0; --i) {
    expected.push_back("terminate " + std::to_string(workers[i].thread_id) + " code 0");
    expected.push_back("close " + std::to_string(workers[i].thread_id));
  }
  EXPECT_EQ(expected, kills);
  EXPECT_EQ(1, lx::mp_num_ways());
  EXPECT_EQ(0, pool_state().threadCount);
}

TEST(PoolStart, ThatLosesAnEventIsOneThatLosesAThread) {
  for (const int event : {1, 2, 5, 6}) {
    PlatformRecorder platform;
    platform.SetProcessors(4);
    platform.RefuseEvent(event);
    lx::mp_num_ways();
    CaptureStderr();
    EXPECT_EQ(7, EmptyPass());
    EXPECT_EQ("(LX LIB) ERROR: Can't create MP thread: " + std::to_string((event - 1) / 2) + "\n",
              LoggedLines());
    EXPECT_EQ((event - 1) / 2, platform.Count("terminate"));
  }
}

// --- Priorities ---

lx::ThreadHandle Self() { return lx::SystemPlatform().currentThread(); }
void SetOwnPriority(std::int32_t priority) {
  lx::SystemPlatform().setThreadPriority(Self(), priority);
}
std::int32_t PriorityOf(const lx::MPWorker& worker) {
  return lx::SystemPlatform().threadPriority(worker.handle);
}

class PoolPriority : public testing::Test {
 public:
  PoolPriority() {
    platform.SetProcessors(4);
    lx::mp_num_ways();
    EmptyPass();
    platform.Clear();
  }
  ~PoolPriority() override { SetOwnPriority(0); }

  const lx::MPWorker& Worker(int i) { return pool_state().workers.load()[i]; }

  PlatformRecorder platform;
};

TEST_F(PoolPriority, OfWorkersIsIdleAsLongAsTheDispatchersStays) {
  EmptyPass();
  for (int i = 0; i < 3; ++i) {
    EXPECT_EQ(-15, PriorityOf(Worker(i)));
  }
  EXPECT_EQ(0, platform.Count("priority"));
}

// The last priority is that of the thread which started the workers, so its own passes do
// not raise them from idle.
TEST(PoolStart, StoresThePriorityOfTheThreadThatStartsIt) {
  PlatformRecorder platform;
  platform.SetProcessors(3);
  lx::mp_num_ways();
  SetOwnPriority(2);

  EmptyPass();
  const std::int32_t stored = pool_state().lastWorkerPriority;
  const int setAtStart = platform.Count("priority");
  SetOwnPriority(0);
  EmptyPass();

  EXPECT_EQ(2, stored);
  EXPECT_EQ(0, setAtStart);
  EXPECT_EQ(1, platform.Count("priority"));
}

// Intended: one last priority for all workers.
TEST_F(PoolPriority, OfADispatcherThatChangedReachesTheFirstWorkerAlone) {
  SetOwnPriority(2);
  EmptyPass();
  EXPECT_EQ(2, PriorityOf(Worker(0)));
  EXPECT_EQ(-15, PriorityOf(Worker(1)));
  EXPECT_EQ(-15, PriorityOf(Worker(2)));
  EXPECT_EQ(1, platform.Count("priority"));
  EmptyPass();
  EXPECT_EQ(1, platform.Count("priority"));
}

TEST_F(PoolPriority, IsSetBetweenTheRecordAndTheStart) {
  SetOwnPriority(2);
  EmptyPass();
  const Log log = platform.Log();
  const std::string first = std::to_string(Worker(0).thread_id);
  const auto at = std::find(log.begin(), log.end(), "priority " + first + " 2");
  ASSERT_NE(log.end(), at);
  EXPECT_EQ("reset done 1", *(at - 1));
  EXPECT_EQ("set start 1", *(at + 1));
}

TEST_F(PoolPriority, ThatCannotBeSetIsTriedOnEveryWorkerAndRemembered) {
  SetOwnPriority(2);
  platform.RefusePriority();
  CaptureStderr();
  EmptyPass();
  EXPECT_EQ(
      "(LX LIB) ERROR: Can't prioritize MP thread: 0\n"
      "(LX LIB) ERROR: Can't prioritize MP thread: 1\n"
      "(LX LIB) ERROR: Can't prioritize MP thread: 2\n",
      LoggedLines());
  EXPECT_EQ(0, pool_state().lastWorkerPriority);
  platform.RefusePriority(false);
  EmptyPass();
  EXPECT_EQ(2, PriorityOf(Worker(0)));
}

TEST(PoolWorker, InheritsThenGoesIdleAndSwitchesBoostingOff) {
  PlatformRecorder platform;
  platform.SetProcessors(2);
  lx::mp_num_ways();
  SetOwnPriority(1);
  EmptyPass();
  SetOwnPriority(0);
  const Log log = platform.ThreadLog();
  const Log expected = {"priority self 1",   "write float control", "set slot",
                        "priority self -15", "boost self 1",        "wait 1: start 1"};
  EXPECT_EQ(expected, Beginning(log, expected.size()));
}

TEST(PoolWorker, ResetsItsStartChecksItsWordAndSetsDone) {
  PlatformRecorder platform;
  platform.SetProcessors(2);
  lx::mp_num_ways();
  EmptyPass();
  lx::mp_end_workers();
  const Log log = platform.ThreadLog();
  const Log expected = {"wait 1: start 1", "reset start 1", "read float control", "set done 1",
                        "wait 1: start 1"};
  const auto at = std::find(log.begin(), log.end(), "wait 1: start 1");
  EXPECT_EQ(expected, Beginning(Log(at, log.end()), expected.size()));
}

// Operations of which those of a later pass may take the place while a worker is between "done" and
// its next wait.
std::counting_semaphore<> goOn{0};
std::counting_semaphore<> waits{0};
std::atomic<int> waitsByLater{0};

void SetEventAndHold(lx::EventHandle event) {
  const bool isWorker = lx::mp_worker_index() > 0;
  lx::SystemPlatform().setEvent(event);
  if (isWorker) {
    goOn.acquire();
  }
}

bool WaitAndTell(std::uint32_t count, const lx::EventHandle* events) {
  waits.release();
  return lx::SystemPlatform().waitForEvents(count, events);
}

bool WaitByLater(std::uint32_t count, const lx::EventHandle* events) {
  ++waitsByLater;
  return WaitAndTell(count, events);
}

TEST(PoolWorker, WaitsByTheOperationsOfThePassThatItWasIn) {
  const lx_test::FreshServices services;
  lx::Platform first = lx::SystemPlatform();
  first.processorCount = [] { return std::int32_t{2}; };
  first.setEvent = SetEventAndHold;
  first.waitForEvents = WaitAndTell;
  const lx::ScopedPlatform firstScope(&first);
  lx::mp_num_ways();
  EmptyPass();
  for (int i = 0; i < 2; ++i) {  // the worker's for its start, and the caller's for its end
    waits.acquire();
  }
  {
    lx::Platform later = lx::SystemPlatform();
    later.waitForEvents = WaitByLater;
    const lx::ScopedPlatform laterScope(&later);
    goOn.release();
    waits.acquire();
  }
  EXPECT_EQ(0, waitsByLater);
}

TEST(PoolWorker, GoesOnWhereNoPriorityCanBeSet) {
  std::string lines;
  {
    PlatformRecorder platform;
    platform.SetProcessors(2);
    platform.RefusePriority();
    platform.RefusePriorityBoost();
    platform.SetError(5, "access denied");
    lx::mp_num_ways();
    CaptureStderr();
    Visits visits;
    Pass(&visits);
    EXPECT_EQ(2U, visits.ways.size());
    lines = LoggedLines();
  }
  EXPECT_EQ(
      "(LX LIB) WARN : MP: Can't set inherrited priority: access denied\n"
      "(LX LIB) WARN : MP: Can't set idle priority: access denied\n"
      "(LX LIB) WARN : MP: Can't enable priority boost: access denied\n",
      lines);
}

TEST(PoolWorker, ThatIsWokenWithoutAFunctionSaysSoAndWaitsAgain) {
  PlatformRecorder platform;
  platform.SetProcessors(2);
  lx::mp_num_ways();
  EmptyPass();
  CaptureStderr();
  lx::SystemPlatform().setEvent(pool_state().workers.load()[0].startEvent);
  while (platform.ThreadCount("wait 1: start 1") < 3) {
    std::this_thread::yield();
  }
  EXPECT_EQ("(LX LIB) ERROR: MP 1: Missing processing entry..\n", LoggedLines());
  Visits visits;
  Pass(&visits);
  EXPECT_EQ(2U, visits.ways.size());
}

TEST(PoolWorker, ThatCannotStoreItsRecordSaysSoAndEnds) {
  PlatformRecorder platform;
  platform.RefuseSlotWrites();
  lx::MPWorker record{};
  record.index = 3;
  CaptureStderr();
  EXPECT_EQ(0, lx::mp_worker_loop(reinterpret_cast<PoolWord>(&record)));
  EXPECT_EQ("(LX LIB) ERROR: MP 3: TlsSetValue error..\n", LoggedLines());
  EXPECT_EQ(0, platform.Count("wait"));
}

// --- The end ---

TEST(PoolEnd, JoinsEveryWorkerAndLeavesPassesToTheirCallers) {
  PlatformRecorder platform;
  platform.SetProcessors(4);
  lx::mp_num_ways();
  EmptyPass();

  lx::mp_end_workers();

  EXPECT_EQ(3, platform.Count("terminate"));
  EXPECT_EQ(3, platform.Count("close"));
  EXPECT_EQ(7, EmptyPass());
  EXPECT_EQ(1, lx::mp_num_ways());
}

TEST(PoolEnd, GivesBackWhatAFailedStartLeft) {
  for (int thread = 1; thread <= 4; ++thread) {
    PlatformRecorder platform;
    platform.SetProcessors(5);
    platform.RefuseThread(thread);
    lx::mp_num_ways();
    CaptureStderr();
    EmptyPass();
    LoggedLines();
    platform.Clear();

    lx::mp_end_workers();

    EXPECT_EQ(0, platform.Count("terminate")) << thread;
    EXPECT_EQ(nullptr, pool_state().workers.load());
    EXPECT_EQ(7, EmptyPass());
  }
}

TEST(PoolEnd, WithoutAPoolMisusesNoHeap) {
  const lx_test::TrackedHeap tracked(1, 1, 0);
  CaptureStderr();

  lx::mp_end_workers();

  EXPECT_EQ("", LoggedLines());
}

TEST(PoolEnd, IsHarmlessTwiceAndWithoutAPool) {
  PlatformRecorder platform;
  lx::mp_end_workers();
  lx::mp_end_workers();
  EXPECT_EQ(0, platform.Count("terminate"));
}

}  // namespace
