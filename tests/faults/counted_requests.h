// SPDX-License-Identifier: BSD-3-Clause
// What the library's sources share: whether a request is to be refused.
#pragma once

#include <atomic>

#include "tests/faults/refusals.h"

namespace faults {

struct Requests {
  std::atomic<long> seen{0};
  std::atomic<const char*> refused{nullptr};  // a literal of the library's
};

// From now on they are counted there, in memory that another process sees, say.
void CountIn(Requests* place);

// From now on the callers of a refused request are written to that file, by its own process: no
// other knows where its libraries are.
//   file  stays the caller's, and must live on
void SayCallersIn(const char* file);

// Counts a request, and says whether it is the one.
//   what  the function's name, for whoever asks what was refused; never freed
bool IsRefused(Kind kind, const char* what);

// While one lives, its thread's requests are not ours.
class NotOurs {
 public:
  NotOurs();
  ~NotOurs();
  NotOurs(const NotOurs&) = delete;
  NotOurs& operator=(const NotOurs&) = delete;
};

// The function that stands behind ours, found once.
template <class Function>
Function Next(Function* found, const char* name);

void* Find(const char* name);

template <class Function>
Function Next(Function* found, const char* name) {
  if (*found == nullptr) {
    *found = reinterpret_cast<Function>(Find(name));
  }
  return *found;
}

}  // namespace faults
