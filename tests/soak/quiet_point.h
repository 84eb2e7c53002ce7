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

//   threads  waits until there are no more than that, or for a long time: the system lists a thread
//            for another moment when it has ended
Held LookAtProcess(int threads);

}  // namespace soak
