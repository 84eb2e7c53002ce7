// SPDX-License-Identifier: BSD-3-Clause
#include <process.h>

#include <atomic>
#include <new>

#include "baselib/platform/threads.h"
#include "baselib/platform/windows_api.h"

namespace lx::native {
namespace {

// What a thread is at, as far as it matters to whoever ends it.
enum Stage : std::int32_t {
  kBusy,     // starting, or at work: may hold a lock of the heap's or the loader's
  kAtEvent,  // waits, and holds nothing
  kLeaving,  // ends by itself
  kTold,     // waits to be ended
};

struct Thread {
  HANDLE handle = nullptr;
  ThreadStart start = nullptr;
  void* argument = nullptr;
  std::atomic<std::int32_t> stage{kBusy};
};

// Threads that this module did not start have no record.
thread_local Thread* ownRecord = nullptr;

unsigned __stdcall RunThread(void* argument) {
  auto* thread = static_cast<Thread*>(argument);
  ownRecord = thread;
  return thread->start(thread->argument);
}

// A thread's own pseudo-handle has no record either.
HANDLE SystemHandle(ThreadHandle thread) {
  return thread == ::GetCurrentThread() ? thread : static_cast<Thread*>(thread)->handle;
}

bool MoveStage(Thread& thread, std::int32_t from, Stage to) {
  return thread.stage.compare_exchange_strong(from, to);
}

CRITICAL_SECTION* SectionAt(void* lock) { return static_cast<CRITICAL_SECTION*>(lock); }

}  // namespace

ThreadHandle BeginThread(std::uint32_t stackBytes, ThreadStart start, void* argument,
                         std::uint32_t flags, std::uint32_t* threadId) {
  auto* thread = new (std::nothrow) Thread;
  if (thread == nullptr) {
    ::SetLastError(ERROR_NOT_ENOUGH_MEMORY);
    return nullptr;
  }
  thread->start = start;
  thread->argument = argument;
  // The thread does not look at its handle, and so may run before that is known here.
  const std::uintptr_t handle =
      _beginthreadex(nullptr, stackBytes, RunThread, thread, flags, threadId);
  if (handle == 0) {
    const DWORD error = ::GetLastError();
    delete thread;
    ::SetLastError(error);
    return nullptr;
  }
  thread->handle = reinterpret_cast<HANDLE>(handle);
  return thread;
}

void EndThread(std::uint32_t exitCode) {
  if (ownRecord == nullptr) {
    return;
  }
  ownRecord->stage.store(kLeaving);
  _endthreadex(exitCode);
}

// A thread that is ended in the middle of its work takes along whatever lock it holds, and
// the process hangs at the next allocation. So it is ended where it waits. It is not asked to
// leave by itself: while the module is unloaded, no thread gets past the loader on its way out.
bool TerminateThread(ThreadHandle handle, std::uint32_t exitCode) {
  auto& thread = *static_cast<Thread*>(handle);
  while (!MoveStage(thread, kAtEvent, kTold)) {
    if (thread.stage.load() == kLeaving) {
      return ::WaitForMultipleObjects(1, &thread.handle, TRUE, INFINITE) == WAIT_OBJECT_0;
    }
    // At the end of the process the system has ended it already, wherever it was.
    if (::WaitForSingleObject(thread.handle, 0) == WAIT_OBJECT_0) {
      return true;
    }
    // Not only a yield: an idle thread would never get its turn from a busy one.
    ::Sleep(1);
  }
  return ::TerminateThread(thread.handle, exitCode) != 0 &&
         ::WaitForMultipleObjects(1, &thread.handle, TRUE, INFINITE) == WAIT_OBJECT_0;
}

// A thread that nobody ended is awaited: it still looks at its record.
bool CloseThread(ThreadHandle handle) {
  auto* thread = static_cast<Thread*>(handle);
  if (::WaitForMultipleObjects(1, &thread->handle, TRUE, INFINITE) != WAIT_OBJECT_0 ||
      ::CloseHandle(thread->handle) == 0) {
    return false;
  }
  delete thread;
  return true;
}

ThreadHandle CurrentThread() { return ::GetCurrentThread(); }

std::int32_t ThreadPriority(ThreadHandle thread) {
  return ::GetThreadPriority(SystemHandle(thread));
}

bool SetThreadPriority(ThreadHandle thread, std::int32_t priority) {
  return ::SetThreadPriority(SystemHandle(thread), priority) != 0;
}

bool SetThreadPriorityBoost(ThreadHandle thread, bool disabled) {
  return ::SetThreadPriorityBoost(SystemHandle(thread), disabled ? TRUE : FALSE) != 0;
}

static_assert(kNoThreadSlot == TLS_OUT_OF_INDEXES);

std::uint32_t AllocateThreadSlot() { return ::TlsAlloc(); }
void ReleaseThreadSlot(std::uint32_t slot) { ::TlsFree(slot); }
bool SetThreadSlot(std::uint32_t slot, void* value) { return ::TlsSetValue(slot, value) != 0; }
void* ThreadSlot(std::uint32_t slot) { return ::TlsGetValue(slot); }

EventHandle MakeEvent() {
  constexpr BOOL kByHand = TRUE;
  constexpr BOOL kUnset = FALSE;
  return ::CreateEventA(nullptr, kByHand, kUnset, nullptr);
}

void DestroyEvent(EventHandle event) { ::CloseHandle(event); }
void SetEvent(EventHandle event) { ::SetEvent(event); }
void ResetEvent(EventHandle event) { ::ResetEvent(event); }

bool WaitForEvents(std::uint32_t count, const EventHandle* events) {
  if (ownRecord != nullptr) {
    ownRecord->stage.store(kAtEvent);
  }
  const DWORD answer = ::WaitForMultipleObjects(count, events, TRUE, INFINITE);
  if (ownRecord != nullptr && !MoveStage(*ownRecord, kAtEvent, kBusy)) {
    ::Sleep(INFINITE);
  }
  return answer != WAIT_FAILED;
}

const std::size_t kLockBytes = sizeof(CRITICAL_SECTION);

void InitializeLock(void* lock) { ::InitializeCriticalSection(SectionAt(lock)); }
void DestroyLock(void* lock) { ::DeleteCriticalSection(SectionAt(lock)); }
void EnterLock(void* lock) { ::EnterCriticalSection(SectionAt(lock)); }
void LeaveLock(void* lock) { ::LeaveCriticalSection(SectionAt(lock)); }

}  // namespace lx::native
