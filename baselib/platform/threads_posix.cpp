// SPDX-License-Identifier: BSD-3-Clause
#include <pthread.h>

#include <atomic>
#include <cerrno>
#include <new>

#include "baselib/platform/threads.h"

#if defined(__x86_64__)
#include <immintrin.h>
#endif

namespace lx::native {
namespace {

// A manual-reset event. Most waits of a pool are short, so a waiter looks at the flag for
// a while before it sleeps.
//
// Who writes a flag here and then reads another one exchanges it. A store would do by the language,
// but an emulator of arm64 lets the read overtake it, and a wake-up is lost. On x86 both are the
// same instruction.
struct Event {
  std::atomic<bool> set{false};
  std::atomic<std::int32_t> sleepers{0};
  pthread_mutex_t mutex = PTHREAD_MUTEX_INITIALIZER;
  pthread_cond_t changed = PTHREAD_COND_INITIALIZER;
};

struct Thread {
  pthread_t thread{};
  ThreadStart start = nullptr;
  void* argument = nullptr;
  std::atomic<std::int32_t> priority{0};
  std::atomic<bool> told{false};  // to end
  std::atomic<bool> joined{false};
  std::atomic<Event*> sleepsAt{nullptr};
};

// Threads that this module did not start have no record, but a priority of their own all
// the same. Plain values: a thread_local with a destructor would keep the module loaded.
thread_local Thread* ownRecord = nullptr;
thread_local std::int32_t foreignPriority = 0;

char currentThreadMark;

// What debuggers and profilers show.
constexpr const char* kThreadName = "lx pool";

Thread* RecordOf(ThreadHandle handle) {
  return handle == &currentThreadMark ? ownRecord : static_cast<Thread*>(handle);
}

void* RunThread(void* argument) {
  auto* thread = static_cast<Thread*>(argument);
  ownRecord = thread;
  pthread_setname_np(pthread_self(), kThreadName);
  thread->start(thread->argument);
  return nullptr;
}

void Pause() {
#if defined(__x86_64__)
  _mm_pause();
#endif
}

// Some 25 microseconds; a processor that has nothing better to do saves the pass a sleep
// and a wake-up, which cost more.
constexpr int kLooks = 500;

bool IsTold() { return ownRecord != nullptr && ownRecord->told.load(); }

bool WaitForEvent(Event& event) {
  for (int look = 0; look < kLooks; ++look) {
    if (event.set.load(std::memory_order_acquire)) {
      return !IsTold();
    }
    Pause();
  }
  pthread_mutex_lock(&event.mutex);
  // Counted before the flag is read once more, as SetEvent writes the flag before it reads
  // the count: one of the two sees the other. The same holds for being told to end.
  event.sleepers.fetch_add(1);
  if (ownRecord != nullptr) {
    ownRecord->sleepsAt.exchange(&event);
  }
  while (!event.set.load() && !IsTold()) {
    pthread_cond_wait(&event.changed, &event.mutex);
  }
  if (ownRecord != nullptr) {
    ownRecord->sleepsAt.store(nullptr);
  }
  event.sleepers.fetch_sub(1);
  pthread_mutex_unlock(&event.mutex);
  return !IsTold();
}

void WakeSleepers(Event& event) {
  pthread_mutex_lock(&event.mutex);
  pthread_cond_broadcast(&event.changed);
  pthread_mutex_unlock(&event.mutex);
}

// Ids of this process's pool threads; the system's own may be wider than 32 bits.
std::atomic<std::uint32_t> lastThreadId{0};

pthread_mutex_t* MutexAt(void* lock) { return static_cast<pthread_mutex_t*>(lock); }

}  // namespace

ThreadHandle BeginThread(std::uint32_t stackBytes, ThreadStart start, void* argument,
                         std::uint32_t /*flags*/, std::uint32_t* threadId) {
  auto* thread = new (std::nothrow) Thread;
  if (thread == nullptr) {
    errno = ENOMEM;
    return nullptr;
  }
  thread->start = start;
  thread->argument = argument;
  pthread_attr_t attributes;
  pthread_attr_init(&attributes);
  int error = pthread_attr_setstacksize(&attributes, stackBytes);
  if (error == 0) {
    error = pthread_create(&thread->thread, &attributes, RunThread, thread);
  }
  pthread_attr_destroy(&attributes);
  if (error != 0) {
    delete thread;
    errno = error;
    return nullptr;
  }
  *threadId = lastThreadId.fetch_add(1) + 1;
  return thread;
}

// Returning from the start function is all that it takes here.
void EndThread(std::uint32_t /*exitCode*/) {}

bool TerminateThread(ThreadHandle handle, std::uint32_t /*exitCode*/) {
  auto* thread = static_cast<Thread*>(handle);
  thread->told.exchange(true);
  if (Event* event = thread->sleepsAt.load(); event != nullptr) {
    WakeSleepers(*event);
  }
  const int error = pthread_join(thread->thread, nullptr);
  thread->joined.store(error == 0);
  errno = error;
  return error == 0;
}

// A thread that nobody ended is awaited: its record and its stack are then free.
bool CloseThread(ThreadHandle handle) {
  auto* thread = static_cast<Thread*>(handle);
  if (!thread->joined.load()) {
    if (const int error = pthread_join(thread->thread, nullptr); error != 0) {
      errno = error;
      return false;
    }
  }
  delete thread;
  return true;
}

ThreadHandle CurrentThread() { return &currentThreadMark; }

std::int32_t ThreadPriority(ThreadHandle handle) {
  const Thread* thread = RecordOf(handle);
  return thread != nullptr ? thread->priority.load(std::memory_order_relaxed) : foreignPriority;
}

// The number alone. Real idle scheduling would starve the workers on a busy machine, and a
// process without privileges could not raise them again.
bool SetThreadPriority(ThreadHandle handle, std::int32_t priority) {
  Thread* thread = RecordOf(handle);
  if (thread != nullptr) {
    thread->priority.store(priority, std::memory_order_relaxed);
  } else {
    foreignPriority = priority;
  }
  return true;
}

bool SetThreadPriorityBoost(ThreadHandle /*handle*/, bool /*disabled*/) { return true; }

std::uint32_t AllocateThreadSlot() {
  pthread_key_t key;
  const int error = pthread_key_create(&key, nullptr);
  errno = error;
  return error == 0 ? static_cast<std::uint32_t>(key) : kNoThreadSlot;
}

void ReleaseThreadSlot(std::uint32_t slot) { pthread_key_delete(slot); }

bool SetThreadSlot(std::uint32_t slot, void* value) {
  const int error = pthread_setspecific(slot, value);
  errno = error;
  return error == 0;
}

void* ThreadSlot(std::uint32_t slot) { return pthread_getspecific(slot); }

EventHandle MakeEvent() { return new (std::nothrow) Event; }

void DestroyEvent(EventHandle handle) { delete static_cast<Event*>(handle); }

void SetEvent(EventHandle handle) {
  auto& event = *static_cast<Event*>(handle);
  event.set.exchange(true);
  if (event.sleepers.load() > 0) {
    WakeSleepers(event);
  }
}

void ResetEvent(EventHandle handle) { static_cast<Event*>(handle)->set.store(false); }

bool WaitForEvents(std::uint32_t count, const EventHandle* events) {
  for (std::uint32_t i = 0; i < count; ++i) {
    if (!WaitForEvent(*static_cast<Event*>(events[i]))) {
      return false;
    }
  }
  return true;
}

const std::size_t kLockBytes = sizeof(pthread_mutex_t);

void InitializeLock(void* lock) {
  pthread_mutexattr_t attributes;
  pthread_mutexattr_init(&attributes);
  pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
  pthread_mutex_init(MutexAt(lock), &attributes);
  pthread_mutexattr_destroy(&attributes);
}

void DestroyLock(void* lock) { pthread_mutex_destroy(MutexAt(lock)); }
void EnterLock(void* lock) { pthread_mutex_lock(MutexAt(lock)); }
void LeaveLock(void* lock) { pthread_mutex_unlock(MutexAt(lock)); }

}  // namespace lx::native
