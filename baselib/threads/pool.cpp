// SPDX-License-Identifier: BSD-3-Clause
// Passes, and the workers that run them.
#include "baselib/threads/pool.h"

#include <cstdint>
#include <mutex>
#include <new>

#include "baselib/threads/last_error.h"
#include "baselib/threads/module_state.h"
#include "baselib/threads/pool_setup.h"
#include "baselib/utils/heap.h"
#include "baselib/utils/log.h"

namespace lx {
namespace {

constexpr std::int32_t kIdlePriority = -15;

// Ends the workers when the module is unloaded, and gives back what a failed start left.
// Made when the pool starts, so it goes before every older static.
struct PoolEndsAtUnload {
  ~PoolEndsAtUnload() { mp_end_workers(); }
};

void SetWorkerPriority() {
  const Platform& platform = GetPlatform();
  if (!platform.setThreadPriority(platform.currentThread(), kIdlePriority)) {
    log_message(kLogWarn, "MP: Can't set idle priority: %s", last_error_text());
  }
  // Intended: the argument switches boosting off, though the message speaks of enabling it.
  if (!platform.setThreadPriorityBoost(platform.currentThread(), true)) {
    log_message(kLogWarn, "MP: Can't enable priority boost: %s", last_error_text());
  }
}

bool StartWorker(MPWorker& worker, std::int32_t i) {
  const Platform& platform = GetPlatform();
  worker.index = i + 1;
  worker.startEvent = platform.createEvent();
  worker.doneEvent = platform.createEvent();
  if (worker.startEvent == nullptr || worker.doneEvent == nullptr) {
    return false;
  }
  worker.thread_id = mp_spawn_thread(mp_worker_loop, reinterpret_cast<PoolWord>(&worker));
  if (worker.thread_id < 0) {
    return false;
  }
  worker.handle = mp_thread_handle(worker.thread_id);
  return true;
}

// What was made stays. Nothing asks for it any more, and as long as workers is not null no second
// start is tried.
bool StaySingleWay() {
  pool_state().ways = 1;
  return false;
}

bool StartWorkers() {
  PoolState& pool = pool_state();
  const Platform& platform = GetPlatform();
  if (pool.workers != nullptr) {
    return false;
  }
  if (!mp_setup()) {
    return StaySingleWay();
  }
  static const PoolEndsAtUnload atUnload;
  const std::int32_t ways = pool.ways;
  log_continue("Initialize %d-way multiprocessing", ways);
  pool.threadSlot = platform.allocateThreadSlot();
  if (pool.threadSlot == kNoThreadSlot) {
    log_message(kLogError, "Can't allocate thread local storage..\n");
    return StaySingleWay();
  }
  const auto count = static_cast<std::uint64_t>(ways) - 1;
  const std::uint64_t bytes = count * sizeof(MPWorker);
  if (bytes > UINT32_MAX) {
    return StaySingleWay();
  }
  auto* workers =
      static_cast<MPWorker*>(lx_malloc(static_cast<std::uint32_t>(bytes), "baselib/threads"));
  if (workers == nullptr) {
    return StaySingleWay();
  }
  for (std::uint64_t i = 0; i < count; ++i) {
    new (workers + i) MPWorker{};
  }
  pool.workers = workers;
  pool.workerCount = ways - 1;
  for (std::int32_t i = 0; i < ways - 1; ++i) {
    if (!StartWorker(workers[i], i)) {
      log_message(kLogError, "Can't create MP thread: %d\n", i);
      while (--i >= 0) {
        mp_kill_thread(workers[i].thread_id);
      }
      return StaySingleWay();
    }
  }
  pool.lastWorkerPriority = platform.threadPriority(platform.currentThread());
  return true;
}

// Whether a pass goes to the workers. Two threads may come here with the first pass.
bool HasWorkers() {
  const std::scoped_lock start(mp_start_mutex());
  PoolState& pool = pool_state();
  if (pool.ways < 1) {
    pool.ways = pool.defaultWays;
  }
  if (pool.ways < 2) {
    return false;
  }
  return pool.workers != nullptr || StartWorkers();
}

bool CheckFloatControl() {
  const Platform& platform = GetPlatform();
  const std::uint32_t saved = pool_state().floatControl;
  if (platform.floatControl() == saved) {
    return true;
  }
  platform.setFloatControl(saved);
  return false;
}

// Intended: all workers share one last priority, so a dispatcher's new priority reaches the
// first of them and no other.
void PassPriority(const MPWorker& worker, std::int32_t i, std::int32_t priority) {
  PoolState& pool = pool_state();
  if (pool.lastWorkerPriority == priority) {
    return;
  }
  if (GetPlatform().setThreadPriority(worker.handle, priority)) {
    pool.lastWorkerPriority = priority;
  } else {
    log_message(kLogError, "Can't prioritize MP thread: %d\n", i);
  }
}

std::int32_t CallEntry(PoolFunction entry, const PoolWord (&args)[6]) {
  return entry(args[0], args[1], args[2], args[3], args[4], args[5]);
}

}  // namespace

std::int32_t mp_num_ways() {
  PoolState& pool = pool_state();
  if (const std::int32_t ways = pool.ways; ways > 0) {
    return ways;
  }
  const std::scoped_lock start(mp_start_mutex());
  if (pool.ways < 1) {
    pool.defaultWays = GetPlatform().processorCount();
    pool.ways = pool.defaultWays;
  }
  return pool.ways;
}

std::int32_t mp_worker_index() {
  const PoolState& pool = pool_state();
  if (pool.ways < 2 || pool.threadSlot == kNoThreadSlot) {
    return 0;
  }
  const auto* worker = static_cast<const MPWorker*>(GetPlatform().threadSlot(pool.threadSlot));
  return worker != nullptr ? worker->index : 0;
}

std::int32_t mp_worker_loop(PoolWord record) {
  auto* worker = PointerOf<MPWorker>(record);
  if (worker == nullptr || !GetPlatform().setThreadSlot(pool_state().threadSlot, worker)) {
    log_message(kLogError, "MP %d: TlsSetValue error..\n", worker != nullptr ? worker->index : 0);
    return 0;
  }
  SetWorkerPriority();
  auto wait = GetPlatform().waitForEvents;
  while (wait(1, &worker->startEvent)) {
    GetPlatform().resetEvent(worker->startEvent);
    if (worker->entry == nullptr) {
      log_message(kLogError, "MP %d: Missing processing entry..\n", worker->index);
      continue;
    }
    // Put back without a word: only the dispatcher warns.
    (void)CheckFloatControl();
    CallEntry(worker->entry, worker->args);
    worker->entry = nullptr;
    // Before the dispatcher is told: then it may put other operations in force, and these may go.
    wait = GetPlatform().waitForEvents;
    GetPlatform().setEvent(worker->doneEvent);
  }
  return 0;
}

std::int32_t mp_run(PoolFunction function, PoolWord a1, PoolWord a2, PoolWord a3, PoolWord a4,
                    PoolWord a5, PoolWord a6) {
  if (!HasWorkers()) {
    return function(a1, a2, a3, a4, a5, a6);
  }
  const Platform& platform = GetPlatform();
  PoolState& pool = pool_state();
  platform.enterLock(pool.dispatchLock);
  if (!CheckFloatControl()) {
    log_message(kLogWarn, "FPU setup changed un-expected..");
  }
  const std::int32_t priority = platform.threadPriority(platform.currentThread());
  MPWorker* workers = pool.workers;
  const std::int32_t count = pool.workerCount;
  EventHandle done[kMaxPoolThreads];
  for (std::int32_t i = 0; i < count; ++i) {
    MPWorker& worker = workers[i];
    done[i] = worker.doneEvent;
    platform.resetEvent(worker.doneEvent);
    worker.args[0] = a1;
    worker.args[1] = a2;
    worker.args[2] = a3;
    worker.args[3] = a4;
    worker.args[4] = a5;
    worker.args[5] = a6;
    worker.entry = function;
    PassPriority(worker, i, priority);
    platform.setEvent(worker.startEvent);
  }
  function(a1, a2, a3, a4, a5, a6);
  platform.waitForEvents(static_cast<std::uint32_t>(count), done);
  platform.leaveLock(pool.dispatchLock);
  return 0;
}

void mp_end_workers() {
  const std::scoped_lock start(mp_start_mutex());
  const Platform& platform = GetPlatform();
  PoolState& pool = pool_state();
  pool.ways = 1;
  MPWorker* workers = pool.workers;
  for (std::int32_t i = pool.workerCount - 1; i >= 0; --i) {
    if (workers[i].thread_id >= 0) {
      mp_kill_thread(workers[i].thread_id);
    }
    for (const EventHandle event : {workers[i].startEvent, workers[i].doneEvent}) {
      if (event != nullptr) {
        platform.destroyEvent(event);
      }
    }
  }
  if (workers != nullptr) {
    lx_free(workers);
  }
  pool.workers = nullptr;
  pool.workerCount = 0;
  if (pool.threadSlot != kNoThreadSlot) {
    platform.releaseThreadSlot(pool.threadSlot);
    pool.threadSlot = kNoThreadSlot;
  }
  mp_undo_setup();
}

}  // namespace lx
