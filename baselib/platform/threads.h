// Threads, events and locks of the system, as the platform's table has them.
#pragma once

#include <cstddef>
#include <cstdint>

#include "baselib/platform/platform.h"

namespace lx::native {

ThreadHandle BeginThread(std::uint32_t stackBytes, ThreadStart start, void* argument,
                         std::uint32_t flags, std::uint32_t* threadId);
void EndThread(std::uint32_t exitCode);
bool TerminateThread(ThreadHandle thread, std::uint32_t exitCode);
bool CloseThread(ThreadHandle thread);
ThreadHandle CurrentThread();
std::int32_t ThreadPriority(ThreadHandle thread);
bool SetThreadPriority(ThreadHandle thread, std::int32_t priority);
bool SetThreadPriorityBoost(ThreadHandle thread, bool disabled);

std::uint32_t AllocateThreadSlot();
void ReleaseThreadSlot(std::uint32_t slot);
bool SetThreadSlot(std::uint32_t slot, void* value);
void* ThreadSlot(std::uint32_t slot);

EventHandle MakeEvent();
void DestroyEvent(EventHandle event);
void SetEvent(EventHandle event);
void ResetEvent(EventHandle event);
bool WaitForEvents(std::uint32_t count, const EventHandle* events);

extern const std::size_t kLockBytes;
void InitializeLock(void* lock);
void DestroyLock(void* lock);
void EnterLock(void* lock);
void LeaveLock(void* lock);

}  // namespace lx::native
