// SPDX-License-Identifier: BSD-3-Clause
// The system's platform with a log of what the services ask of it and faults on demand.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "baselib/platform/platform.h"
#include "tests/support/fresh_services.h"

namespace lx_test {

// In force for the length of a scope, one at a time, with fresh services on both sides.
// Calls go on to the real system unless a fault says otherwise, so threads are real.
class PlatformRecorder {
 public:
  PlatformRecorder();
  ~PlatformRecorder();
  PlatformRecorder(const PlatformRecorder&) = delete;
  PlatformRecorder& operator=(const PlatformRecorder&) = delete;

  // Calls of the thread that made the recorder, in order. Events are named after the worker
  // that they belong to, in the order in which they are made: "set start 1". Threads are
  // named by their id: "terminate 7". Locks are "table" and "dispatch", as they are made.
  std::vector<std::string> Log() const;
  // Calls of all other threads; among different threads the order means nothing.
  std::vector<std::string> ThreadLog() const;
  void Clear();
  int Count(const std::string& call) const;        // entries of Log that begin with call
  int ThreadCount(const std::string& call) const;  // the same of ThreadLog

  void SetProcessors(std::int32_t count);
  void SetPageSize(std::int32_t bytes);
  void SetCounter(std::int64_t value, std::int64_t frequency);
  void SetError(std::uint32_t error, const std::string& text);

  // From now on. A count refuses the n-th call, counted from 1, and no other.
  void RefuseThread(int n);
  void RefuseEvent(int n);
  void RefuseSlot();
  void RefuseSlotWrites();
  void RefuseAllocation(int n);
  void RefusePriority(bool refuse = true);  // of any thread
  void RefusePriorityBoost();
  void RefuseTerminate();  // the thread ends, but the answer is no
  void RefuseClose();      // likewise

 private:
  FreshServices fresh_;
  lx::Platform table_;
  lx::ScopedPlatform scope_;
};

}  // namespace lx_test
