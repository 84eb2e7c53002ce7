// SPDX-License-Identifier: BSD-3-Clause
#include "tests/faults/refusals.h"

#include <dlfcn.h>
#include <errno.h>
#include <execinfo.h>
#include <fcntl.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <iterator>

#include "tests/faults/counted_requests.h"

namespace faults {
namespace {

std::atomic<int> refusedKind{0};
std::atomic<long> refusedAt{0};
Requests own;
Requests* requests = &own;
const char* callersFile = nullptr;
__attribute__((tls_model("initial-exec"))) thread_local int notOurs = 0;

void SayCallers() {
  void* callers[24];
  const int count = backtrace(callers, std::size(callers));
  const int file = open(callersFile, O_WRONLY | O_CREAT | O_TRUNC, 0600);
  backtrace_symbols_fd(callers, count, file);
  close(file);
}

}  // namespace

bool IsRefused(Kind kind, const char* what) {
  if (static_cast<int>(kind) != refusedKind.load(std::memory_order_relaxed) || notOurs > 0) {
    return false;
  }
  if (requests->seen.fetch_add(1) + 1 != refusedAt) {
    return false;
  }
  const NotOurs itself;
  if (callersFile != nullptr) {
    SayCallers();
  }
  requests->refused = what;
  return true;
}

void CountIn(Requests* place) { requests = place; }
void SayCallersIn(const char* file) { callersFile = file; }

NotOurs::NotOurs() { ++notOurs; }
NotOurs::~NotOurs() { --notOurs; }

void* Find(const char* name) {
  const NotOurs loader;
  return dlsym(RTLD_NEXT, name);
}

extern "C" {

void RefuseFrom(Kind kind, long n) {
  // The first look at callers loads what it needs for that.
  void* nobody[1];
  backtrace(nobody, 1);
  requests->seen = 0;
  requests->refused = nullptr;
  refusedAt = n;
  refusedKind = static_cast<int>(kind);
}

void RefuseNoMore() { refusedKind = 0; }
long RequestsSeen() { return requests->seen; }
const char* WhatWasRefused() { return requests->refused; }
void BeginGranted() { ++notOurs; }
void EndGranted() { --notOurs; }

__attribute__((visibility("default"))) int pthread_create(pthread_t* thread,
                                                          const pthread_attr_t* attributes,
                                                          void* (*work)(void*), void* argument) {
  static decltype(&pthread_create) next;
  if (IsRefused(Kind::kThreads, "pthread_create")) {
    return EAGAIN;
  }
  // What the system's own start of a thread asks for stands for itself.
  const NotOurs loader;
  return Next(&next, "pthread_create")(thread, attributes, work, argument);
}

// A library's own beginning happens in here: what it cannot do without is not ours to mend.
__attribute__((visibility("default"))) void* dlopen(const char* file, int mode) noexcept {
  static decltype(&dlopen) next;
  const NotOurs loader;
  return Next(&next, "dlopen")(file, mode);
}

}  // extern "C"

}  // namespace faults
