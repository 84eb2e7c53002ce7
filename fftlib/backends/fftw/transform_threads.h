// SPDX-License-Identifier: BSD-3-Clause
// Threads for the transform library's jobs, in the place of its own: these can be awaited.
//
// They are started as jobs ask for them and stay for the next ones. Several callers may run
// jobs at once, and a job may run jobs of its own; each gets threads that are free.
#pragma once

#include <cstddef>

namespace lx {

// Runs jobs and returns when all are done: the form of function that the library calls.
//   work   called once with each job, on any thread, in any order
//   jobs   count records of bytes each
//   data   not looked at
// The caller runs the last job, and those that no thread could be had for.
void RunTransformJobs(void* (*work)(char*), char* jobs, std::size_t bytes, int count, void* data);

// Ends all threads, and returns when their last instructions are done. Not while jobs run.
void EndTransformThreads();

}  // namespace lx
