// SPDX-License-Identifier: BSD-3-Clause
// The pool: one function on every way at once.
//
// A pass runs a function on the calling thread, which is way 0, and on the resident
// workers, ways 1 and up, all with the same six arguments, and returns when the last way is
// done. There is no queue: the function asks which way it is and divides the work itself.
// Most callers want rows divided: see parallel_rows.h.
//
// The workers start with the first pass. Passes run one at a time in a process; any thread
// may start one, but no function of a pass may. Functions of a pass do not throw.
//
// Nothing here reports a failure to the caller: where threads cannot be had, the pool says
// so in the log, stays at one way for good, and the work is done by the caller alone.
#pragma once

#include <cstdint>

#include "baselib/platform/platform.h"

namespace lx {

// An argument: a number, or a pointer as one.
using PoolWord = std::intptr_t;

// The pointer that a word was made from.
template <class T>
T* PointerOf(PoolWord word) {
  return reinterpret_cast<T*>(word);  // NOLINT(performance-no-int-to-ptr): words carry both
}

using PoolFunction = std::int32_t (*)(PoolWord, PoolWord, PoolWord, PoolWord, PoolWord, PoolWord);
using ThreadEntry = std::int32_t (*)(PoolWord argument);

// The table of threads has 32 rows, so a pool has at most 33 ways. Where more would be
// needed, it stays at one.
inline constexpr std::int32_t kMaxPoolThreads = 32;

// Ways of a pass, the caller included. The first call fixes them: as many as processors.
std::int32_t mp_num_ways();

// The calling thread's way: 0 on any thread that is not a worker.
std::int32_t mp_worker_index();

// Runs one pass. The result is the function's own where the caller runs it alone, else 0.
// Called before mp_num_ways has fixed the ways, it leaves the pool at one way for good.
std::int32_t mp_run(PoolFunction function, PoolWord a1, PoolWord a2, PoolWord a3, PoolWord a4,
                    PoolWord a5, PoolWord a6);

// Starts a thread of 1 MiB stack with the creator's priority and the pool's floating-point
// control word. The result is its id, or -1.
std::int32_t mp_spawn_thread(ThreadEntry entry, PoolWord argument);

// Ends a thread of mp_spawn_thread. An unknown id is legal and does nothing.
void mp_kill_thread(std::int32_t threadId);

// Null for an id that no thread of the table has.
ThreadHandle mp_thread_handle(std::int32_t threadId);

// Ends the workers and gives back what the pool holds, for a module that is about to be
// unloaded. Passes then run on their callers. No pass may be running.
void mp_end_workers();

}  // namespace lx
