// SPDX-License-Identifier: BSD-3-Clause
// What the base services keep for the whole process. For their own sources, and for tests
// that want to begin anew.
#pragma once

#include <atomic>
#include <cstdint>

#include "baselib/threads/pool.h"

namespace lx {

// One thread of the table.
struct MPThreadSlot {
  std::int32_t in_use;
  ThreadEntry entry;
  PoolWord argument;
  ThreadHandle handle;
  std::uint32_t thread_id;
  std::int32_t priority;  // of the creating thread, at creation
  // Who gives the row back: the thread that ends by itself, or whoever kills it.
  std::atomic<std::int32_t> fate;
};

// One worker of the pool. The dispatcher writes entry and args before it sets the start
// event, the worker clears entry before it sets the done event; nothing else guards them.
struct MPWorker {
  std::int32_t index = 0;       // its way, from 1
  std::int32_t thread_id = -1;  // negative where it could not be made
  ThreadHandle handle = nullptr;
  EventHandle startEvent = nullptr;
  EventHandle doneEvent = nullptr;
  PoolFunction entry = nullptr;  // null where none is pending
  PoolWord args[6] = {};
};

struct PoolState {
  std::atomic<std::int32_t> ways{0};  // 0: not yet decided
  std::int32_t defaultWays = 1;
  std::atomic<std::int32_t> setupDone{0};
  std::int32_t threadCount = 0;
  MPThreadSlot threads[kMaxPoolThreads] = {};
  void* tableLock = nullptr;     // guards threads and threadCount
  void* dispatchLock = nullptr;  // held for the length of a pass; taken after the table's
  std::uint32_t floatControl = 0;
  std::atomic<std::uint32_t> threadSlot{kNoThreadSlot};
  std::atomic<MPWorker*> workers{nullptr};
  std::int32_t workerCount = 0;  // records of workers, started or not
  std::int32_t lastWorkerPriority = -1;
};

struct SystemState {
  std::atomic<std::int32_t> pageSize{-1};
  std::atomic<double> counterPeriod{-1.0};  // seconds; stored before the frequency
  std::atomic<double> counterFrequency{-1.0};
};

PoolState& pool_state();
SystemState& system_state();

// The body of every thread of the table, and of a worker. The thread's result is 0.
std::uint32_t mp_thread_start(void* row);
std::int32_t mp_worker_loop(PoolWord record);

}  // namespace lx
