// SPDX-License-Identifier: BSD-3-Clause
// The platform's threads, thread slots, events and locks.
#pragma once

#include <cstddef>
#include <cstdint>

namespace lx {

// What the system hands out. Null stands for none.
using ThreadHandle = void*;
using EventHandle = void*;

// A thread's start function. The result is the thread's exit code.
using ThreadStart = std::uint32_t (*)(void* argument);

inline constexpr std::uint32_t kNoThreadSlot = 0xFFFFFFFF;

namespace native {

// Starts a thread. The id is above 0. The handle is closed with CloseThread.
// Null where the system has no thread to give.
//   stackBytes  the size of its stack
//   flags       0: it runs at once
ThreadHandle BeginThread(std::uint32_t stackBytes, ThreadStart start, void* argument,
                         std::uint32_t flags, std::uint32_t* threadId);

// A thread's last act before its start function returns.
void EndThread(std::uint32_t exitCode);

// Ends another thread at the event that it waits for, now or next, and returns when it
// has ended. Where the system cannot end a thread from outside, the thread leaves there
// by itself: see WaitForEvents. May be called while this module is unloaded. False where it
// cannot be done.
bool TerminateThread(ThreadHandle thread, std::uint32_t exitCode);

// Gives a handle back. May wait for the thread to end.
bool CloseThread(ThreadHandle thread);

// Stands for the calling thread, whichever that is. Not to be closed.
ThreadHandle CurrentThread();

// Priorities count from 0, the ordinary one; -15 is idle. A system on which a thread
// could starve, or never rise again, only keeps the number.
std::int32_t ThreadPriority(ThreadHandle thread);
bool SetThreadPriority(ThreadHandle thread, std::int32_t priority);
bool SetThreadPriorityBoost(ThreadHandle thread, bool disabled);

// A slot that holds one word for each thread, null at first. kNoThreadSlot where none is
// left.
std::uint32_t AllocateThreadSlot();
void ReleaseThreadSlot(std::uint32_t slot);
bool SetThreadSlot(std::uint32_t slot, void* value);
void* ThreadSlot(std::uint32_t slot);

// An event that is set by hand, reset by hand and made unset. Null where there is none to
// be had.
EventHandle MakeEvent();
void DestroyEvent(EventHandle event);
void SetEvent(EventHandle event);
void ResetEvent(EventHandle event);

// Waits until all of the events are set. False where the calling thread was told to
// end instead; it then leaves without touching anything it shares.
bool WaitForEvents(std::uint32_t count, const EventHandle* events);

// Critical sections: recursive locks in memory of the caller's, of that size.
extern const std::size_t kLockBytes;
void InitializeLock(void* lock);
void DestroyLock(void* lock);
void EnterLock(void* lock);
void LeaveLock(void* lock);

}  // namespace native

struct ThreadOperations {
  decltype(native::BeginThread)* beginThread = native::BeginThread;
  decltype(native::EndThread)* endThread = native::EndThread;
  decltype(native::TerminateThread)* terminateThread = native::TerminateThread;
  decltype(native::CloseThread)* closeThread = native::CloseThread;
  decltype(native::CurrentThread)* currentThread = native::CurrentThread;
  decltype(native::ThreadPriority)* threadPriority = native::ThreadPriority;
  decltype(native::SetThreadPriority)* setThreadPriority = native::SetThreadPriority;
  decltype(native::SetThreadPriorityBoost)* setThreadPriorityBoost = native::SetThreadPriorityBoost;
  decltype(native::AllocateThreadSlot)* allocateThreadSlot = native::AllocateThreadSlot;
  decltype(native::ReleaseThreadSlot)* releaseThreadSlot = native::ReleaseThreadSlot;
  decltype(native::SetThreadSlot)* setThreadSlot = native::SetThreadSlot;
  decltype(native::ThreadSlot)* threadSlot = native::ThreadSlot;
  decltype(native::MakeEvent)* createEvent = native::MakeEvent;
  decltype(native::DestroyEvent)* destroyEvent = native::DestroyEvent;
  decltype(native::SetEvent)* setEvent = native::SetEvent;
  decltype(native::ResetEvent)* resetEvent = native::ResetEvent;
  decltype(native::WaitForEvents)* waitForEvents = native::WaitForEvents;
  std::size_t lockBytes = native::kLockBytes;
  decltype(native::InitializeLock)* initializeLock = native::InitializeLock;
  decltype(native::DestroyLock)* destroyLock = native::DestroyLock;
  decltype(native::EnterLock)* enterLock = native::EnterLock;
  decltype(native::LeaveLock)* leaveLock = native::LeaveLock;
};

}  // namespace lx
