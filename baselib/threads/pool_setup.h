// SPDX-License-Identifier: BSD-3-Clause
// What the pool's sources share: its one-time set-up.
#pragma once

#include <mutex>

namespace lx {

// Guards everything that happens once: set-up, the number of ways, the start and the end.
// Recursive, since a start spawns threads. Taken before any lock of the pool's, and never
// while a pass runs.
std::recursive_mutex& mp_start_mutex();

// Makes the locks, fixes the floating-point control word that every thread of the pool
// runs with, and the default number of ways. Once; false where there is no memory for it.
bool mp_setup();

// Gives back what mp_setup made, and the handles of threads that ended by themselves.
void mp_undo_setup();

}  // namespace lx
