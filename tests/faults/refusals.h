// SPDX-License-Identifier: BSD-3-Clause
// Refusals: a library that stands before the C library, counts what a process asks the system for,
// and refuses the n-th request. Loaded with a program (LD_PRELOAD), or linked by a test.
#pragma once

namespace faults {

enum class Kind : int {
  kNone,
  kMemory,   // malloc and its family, and so operator new
  kFiles,    // what opens, reads, writes, moves, removes and looks at files
  kThreads,  // pthread_create
};

// Outside the length of this nothing is counted and nothing refused. What the loader asks for
// while it loads a library is no request of ours and never refused.
extern "C" {
//   n  the request of that kind that is refused, counted from 1; 0: all are granted
__attribute__((visibility("default"))) void RefuseFrom(Kind kind, long n);
__attribute__((visibility("default"))) void RefuseNoMore();
__attribute__((visibility("default"))) long RequestsSeen();           // since RefuseFrom
__attribute__((visibility("default"))) const char* WhatWasRefused();  // null: all were granted
__attribute__((visibility("default"))) long BlocksAlive();            // of memory, since the start
// Between these the thread's requests are neither counted nor refused. They may be nested.
__attribute__((visibility("default"))) void BeginGranted();
__attribute__((visibility("default"))) void EndGranted();
}

// While one lives, its thread's requests are those of another than who is tested.
class Granted {
 public:
  Granted() { BeginGranted(); }
  ~Granted() { EndGranted(); }
  Granted(const Granted&) = delete;
  Granted& operator=(const Granted&) = delete;
};

}  // namespace faults
