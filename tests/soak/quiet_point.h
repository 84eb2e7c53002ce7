// SPDX-License-Identifier: BSD-3-Clause
// What this process holds while nothing of ours is alive in it.
#pragma once

#include <cstddef>
#include <cstdint>

namespace soak {

struct Held {
  std::uint64_t resident;  // bytes of memory, as the system counts them
  std::uint64_t
      heap;  // bytes that were asked for and not given back; a sanitizer's where there is one
  int descriptors;
  int threads;
  std::size_t temporary;  // files in the folder for temporary ones
};

// How many threads there are before anything lives. A first one has come and gone by then: the
// thread sanitizer starts one of its own with it, which stays.
int QuietThreads();

//   threads  waits until there are no more than that, for two seconds at most: the system lists a
//            thread for another moment when it has ended
Held LookAtProcess(int threads);

}  // namespace soak
