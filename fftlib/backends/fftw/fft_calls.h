// SPDX-License-Identifier: BSD-3-Clause
// The transform library, as the engine calls it.
//
// The table is a seam: a test can count the calls, refuse one, or answer in the
// library's place. Only execute may run on several threads at once; every other call is
// made under FftPlannerLock.
#pragma once

#include <cstddef>
#include <cstdio>
#include <mutex>

struct fftw_plan_s;

namespace lx {

struct FftCalls {
  int (*initThreads)();
  void (*cleanupThreads)();
  void (*planWithThreads)(int count);
  fftw_plan_s* (*planForward)(int rows, int columns, double* spatial, double (*spectrum)[2],
                              unsigned flags);
  fftw_plan_s* (*planInverse)(int rows, int columns, double (*spectrum)[2], double* spatial,
                              unsigned flags);
  void (*execute)(fftw_plan_s* plan);
  void (*destroyPlan)(fftw_plan_s* plan);
  void* (*allocate)(std::size_t bytes);
  void (*release)(void* block);

  // Between what the library has learnt in this process and an open file. Importing gives 0
  // for a file that is none of its own.
  int (*importWisdom)(std::FILE* file);
  void (*exportWisdom)(std::FILE* file);
};

// Flags of a plan: quickly guessed, or measured on the arrays (which destroys them).
inline constexpr unsigned kPlanEstimate = 64;
inline constexpr unsigned kPlanMeasure = 0;

// The library's version, and the instruction sets that it was built with:
// "fftw-3.3.10-sse2-avx", say.
extern const char* const kFftVersion;

const FftCalls& LibraryFftCalls();
const FftCalls& GetFftCalls();

// Puts a table in force for the length of a scope, before the first engine of that
// scope and until after its last. The table is borrowed.
class ScopedFftCalls {
 public:
  explicit ScopedFftCalls(const FftCalls* table);
  ~ScopedFftCalls();
  ScopedFftCalls(const ScopedFftCalls&) = delete;
  ScopedFftCalls& operator=(const ScopedFftCalls&) = delete;

 private:
  const FftCalls* previous_;
};

// One lock for the planner of the whole process. Never held while a pass runs.
std::mutex& FftPlannerLock();

// The library's threads, shared by all engines: the first Acquire starts them, the last
// Release ends them, since ending them under a live plan crashes.
// Acquire gives what the library answered to its start: 0 means no threads.
unsigned AcquireFftThreads();
void ReleaseFftThreads();

}  // namespace lx
