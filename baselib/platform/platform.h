// SPDX-License-Identifier: BSD-3-Clause
// The platform seam: every operation that the base services ask of the system.
//
// Each group of operations has a header of its own, with their contracts, and behind it one source
// a system. A group's field holds the system's own operation of almost the same name,
// lx::native::..., so a default table is the system's. Callers go through GetPlatform, so that a
// test can put a fault in place of any operation with a ScopedPlatform. No setting and no
// environment variable chooses a table.
#pragma once

#include <atomic>
#include <cstdint>

#include "baselib/platform/clocks.h"
#include "baselib/platform/console.h"
#include "baselib/platform/files.h"
#include "baselib/platform/float_control.h"
#include "baselib/platform/memory.h"
#include "baselib/platform/process.h"
#include "baselib/platform/processor.h"
#include "baselib/platform/settings.h"
#include "baselib/platform/threads.h"

namespace lx {

// The groups are bases and not members: an operation's name says its group already.
struct Platform : ClockOperations,
                  ConsoleOperations,
                  FileOperations,
                  FloatControlOperations,
                  MemoryOperations,
                  ProcessOperations,
                  ProcessorOperations,
                  SettingsOperations,
                  ThreadOperations {};

// This system's operations. The table lives as long as the process.
const Platform& SystemPlatform();

// The table in force: the system's, unless a test has put another in its place.
const Platform& GetPlatform();

// How many things want to see every allocation: a table in force, the heap's account. With none
// of them the allocator calls the C runtime and nothing else. Change it by these two alone.
extern std::atomic<std::int32_t> heapWatchers;
void AddHeapWatcher();
void RemoveHeapWatcher();

// Puts a table in force for the length of a scope. The table is borrowed. Scopes
// nest, and only one thread may open or close them.
class ScopedPlatform {
 public:
  explicit ScopedPlatform(const Platform* table);
  ~ScopedPlatform();
  ScopedPlatform(const ScopedPlatform&) = delete;
  ScopedPlatform& operator=(const ScopedPlatform&) = delete;

 private:
  const Platform* previous_;
};

}  // namespace lx
