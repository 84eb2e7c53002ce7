// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/transform_threads.h"

#include <cstdint>
#include <mutex>
#include <new>
#include <utility>

#include "baselib/platform/platform.h"

namespace lx {
namespace {

constexpr std::uint32_t kStackBytes = 0x100000;

using Work = void* (*)(char*);

// The events order whatever caller and thread read and write here.
struct Helper {
  ThreadHandle thread = nullptr;
  EventHandle start = nullptr;
  EventHandle done = nullptr;
  Work work = nullptr;  // null where the thread is to end
  char* job = nullptr;
  Helper* next = nullptr;  // in the list that it is in
};

struct FreeHelpers {
  std::mutex mutex;
  Helper* first = nullptr;
};

FreeHelpers& free_helpers() {
  static FreeHelpers helpers;
  return helpers;
}

std::uint32_t ServeJobs(void* argument) {
  auto& self = *static_cast<Helper*>(argument);
  // A copy: the thread goes on when what was in force at its first job is gone.
  const Platform platform = GetPlatform();
  while (platform.waitForEvents(1, &self.start) && self.work != nullptr) {
    platform.resetEvent(self.start);
    self.work(self.job);
    platform.setEvent(self.done);
  }
  platform.endThread(0);
  return 0;
}

void FreeHelper(Helper* helper) {
  for (const EventHandle event : {helper->start, helper->done}) {
    if (event != nullptr) {
      GetPlatform().destroyEvent(event);
    }
  }
  delete helper;
}

// Null where the system has nothing left to give.
Helper* MakeHelper() {
  const Platform& platform = GetPlatform();
  auto* helper = new (std::nothrow) Helper;
  if (helper == nullptr) {
    return nullptr;
  }
  helper->start = platform.createEvent();
  helper->done = platform.createEvent();
  if (helper->start != nullptr && helper->done != nullptr) {
    std::uint32_t id = 0;
    helper->thread = platform.beginThread(kStackBytes, ServeJobs, helper, 0, &id);
  }
  if (helper->thread == nullptr) {
    FreeHelper(helper);
    return nullptr;
  }
  return helper;
}

Helper* Hire() {
  FreeHelpers& helpers = free_helpers();
  {
    const std::scoped_lock hold(helpers.mutex);
    if (helpers.first != nullptr) {
      return std::exchange(helpers.first, helpers.first->next);
    }
  }
  return MakeHelper();
}

void LetGo(Helper* helper) {
  FreeHelpers& helpers = free_helpers();
  const std::scoped_lock hold(helpers.mutex);
  helper->next = std::exchange(helpers.first, helper);
}

}  // namespace

void RunTransformJobs(Work work, char* jobs, std::size_t bytes, int count, void* /*data*/) {
  const Platform& platform = GetPlatform();
  Helper* hired = nullptr;
  for (int i = 0; i < count; ++i) {
    char* job = jobs + static_cast<std::size_t>(i) * bytes;
    // The caller does the last job itself, and each that finds no thread.
    Helper* helper = i < count - 1 ? Hire() : nullptr;
    if (helper == nullptr) {
      work(job);
      continue;
    }
    helper->work = work;
    helper->job = job;
    helper->next = std::exchange(hired, helper);
    platform.setEvent(helper->start);
  }
  while (hired != nullptr) {
    Helper* helper = std::exchange(hired, hired->next);
    platform.waitForEvents(1, &helper->done);
    platform.resetEvent(helper->done);
    LetGo(helper);
  }
}

// The threads leave by themselves: unlike the pool's they are never ended from within an unload,
// and a thread that leaves gives back what the system keeps for it.
void EndTransformThreads() {
  const Platform& platform = GetPlatform();
  FreeHelpers& helpers = free_helpers();
  const std::scoped_lock hold(helpers.mutex);
  while (helpers.first != nullptr) {
    Helper* helper = std::exchange(helpers.first, helpers.first->next);
    helper->work = nullptr;
    platform.setEvent(helper->start);
    (void)platform.closeThread(helper->thread);
    FreeHelper(helper);
  }
}

}  // namespace lx
