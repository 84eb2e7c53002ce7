// SPDX-License-Identifier: BSD-3-Clause
// The pool's set-up and its table of threads.
#include <algorithm>
#include <cstdint>
#include <mutex>

#include "baselib/threads/last_error.h"
#include "baselib/threads/module_state.h"
#include "baselib/threads/pool.h"
#include "baselib/threads/pool_setup.h"
#include "baselib/utils/log.h"

namespace lx {
namespace {

constexpr std::uint32_t kStackBytes = 0x100000;

// A thread that ends by itself takes the table's lock to give its row back. Whoever kills it waits
// for it with the lock in hand. So one of the two gets the row.
enum Fate : std::int32_t { kRuns, kEnds, kKilled };

bool Decide(MPThreadSlot& row, Fate fate) {
  std::int32_t runs = kRuns;
  return row.fate.compare_exchange_strong(runs, fate);
}

class ScopedLock {
 public:
  explicit ScopedLock(void* lock) : lock_(lock) { GetPlatform().enterLock(lock_); }
  ~ScopedLock() { GetPlatform().leaveLock(lock_); }
  ScopedLock(const ScopedLock&) = delete;
  ScopedLock& operator=(const ScopedLock&) = delete;

 private:
  void* lock_;
};

void* MakeLock() {
  const Platform& platform = GetPlatform();
  void* lock = platform.allocate(platform.lockBytes);
  if (lock != nullptr) {
    platform.initializeLock(lock);
  }
  return lock;
}

void FreeLock(void*& lock) {
  if (lock != nullptr) {
    GetPlatform().destroyLock(lock);
    GetPlatform().release(lock);
    lock = nullptr;
  }
}

// Null where no taken row has that id. A lost row is taken and has no thread.
MPThreadSlot* FindThread(std::int32_t threadId) {
  for (MPThreadSlot& row : pool_state().threads) {
    if (row.in_use != 0 && row.handle != nullptr &&
        row.thread_id == static_cast<std::uint32_t>(threadId)) {
      return &row;
    }
  }
  return nullptr;
}

// A thread that ended by itself leaves its handle in the row.
void CloseOldHandle(MPThreadSlot& row) {
  if (row.handle != nullptr) {
    (void)GetPlatform().closeThread(row.handle);
    row.handle = nullptr;
  }
}

void ReleaseRow(MPThreadSlot& row) {
  row.in_use = 0;
  --pool_state().threadCount;
}

void RunRow(MPThreadSlot& row) {
  const Platform& platform = GetPlatform();
  if (!platform.setThreadPriority(platform.currentThread(), row.priority)) {
    log_message(kLogWarn, "MP: Can't set inherrited priority: %s", last_error_text());
  }
  platform.setFloatControl(pool_state().floatControl);
  row.entry(row.argument);
  if (Decide(row, kEnds)) {
    const ScopedLock lock(pool_state().tableLock);
    ReleaseRow(row);
  }
}

}  // namespace

PoolState& pool_state() {
  static constinit PoolState state;
  return state;
}

std::recursive_mutex& mp_start_mutex() {
  static std::recursive_mutex mutex;
  return mutex;
}

bool mp_setup() {
  const std::scoped_lock start(mp_start_mutex());
  PoolState& pool = pool_state();
  if (pool.setupDone != 0) {
    return true;
  }
  const Platform& platform = GetPlatform();
  pool.threadCount = 0;
  pool.tableLock = MakeLock();
  pool.dispatchLock = MakeLock();
  if (pool.tableLock == nullptr || pool.dispatchLock == nullptr) {
    mp_undo_setup();
    return false;
  }
  // Ahead of the reading, so that workers get this precision.
  platform.extendFloatPrecision();
  pool.floatControl = platform.floatControl();
  pool.defaultWays = std::max(platform.processorCount(), 1);
  pool.setupDone = 1;
  return true;
}

void mp_undo_setup() {
  PoolState& pool = pool_state();
  for (MPThreadSlot& row : pool.threads) {
    if (row.in_use == 0) {
      CloseOldHandle(row);
    }
  }
  FreeLock(pool.tableLock);
  FreeLock(pool.dispatchLock);
  pool.setupDone = 0;
}

std::uint32_t mp_thread_start(void* argument) {
  auto* row = static_cast<MPThreadSlot*>(argument);
  if (row != nullptr && row->entry != nullptr) {
    RunRow(*row);
  }
  GetPlatform().endThread(0);
  return 0;
}

std::int32_t mp_spawn_thread(ThreadEntry entry, PoolWord argument) {
  if (!mp_setup()) {
    return -1;
  }
  const Platform& platform = GetPlatform();
  PoolState& pool = pool_state();
  const ScopedLock lock(pool.tableLock);
  MPThreadSlot* const end = pool.threads + kMaxPoolThreads;
  MPThreadSlot* row =
      std::find_if(pool.threads, end, [](const MPThreadSlot& slot) { return slot.in_use == 0; });
  if (row == end) {
    log_message(kLogWarn, "MP: Maximum number of thread's reached !!\n");
    return -1;
  }
  CloseOldHandle(*row);
  row->in_use = 1;
  row->entry = entry;
  row->argument = argument;
  row->priority = platform.threadPriority(platform.currentThread());
  row->fate = kRuns;
  row->thread_id = 0;
  const ThreadHandle handle =
      platform.beginThread(kStackBytes, mp_thread_start, row, 0, &row->thread_id);
  if (handle == nullptr) {
    // Intended: the row stays taken, and is lost.
    return -1;
  }
  row->handle = handle;
  ++pool.threadCount;
  return static_cast<std::int32_t>(row->thread_id);
}

void mp_kill_thread(std::int32_t threadId) {
  PoolState& pool = pool_state();
  if (pool.setupDone == 0) {
    return;
  }
  const Platform& platform = GetPlatform();
  const ScopedLock table(pool.tableLock);
  const ScopedLock dispatch(pool.dispatchLock);
  MPThreadSlot* row = FindThread(threadId);
  if (row == nullptr || !Decide(*row, kKilled)) {
    return;
  }
  const auto number = static_cast<std::int32_t>(row - pool.threads);
  if (!platform.terminateThread(row->handle, 0)) {
    log_message(kLogWarn, "MP: Can't terminate thread(%d): %d\n", number, threadId);
  }
  if (!platform.closeThread(row->handle)) {
    log_message(kLogWarn, "MP: Can't close thread(%d): %d\n", number, threadId);
  }
  row->handle = nullptr;
  ReleaseRow(*row);
}

ThreadHandle mp_thread_handle(std::int32_t threadId) {
  PoolState& pool = pool_state();
  if (pool.setupDone == 0) {
    return nullptr;
  }
  const ScopedLock lock(pool.tableLock);
  const MPThreadSlot* row = FindThread(threadId);
  return row != nullptr ? row->handle : nullptr;
}

}  // namespace lx
