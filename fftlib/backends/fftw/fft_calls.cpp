// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/fft_calls.h"

#include <fftw3.h>

#include <atomic>

#include "fftlib/backends/fftw/transform_threads.h"

namespace lx {
namespace {

// The library's own threads would be waited for without end where the system refuses one, and its
// end does not wait for their last instructions, so their code would have to outlive a module that
// brought it. Ours are awaited, and a job that finds no thread is the caller's.
int StartThreads() {
  fftw_threads_set_callback(RunTransformJobs, nullptr);
  return fftw_init_threads();
}

void EndThreads() {
  fftw_cleanup_threads();
  // A host may go on with the library, when our code has gone.
  fftw_threads_set_callback(nullptr, nullptr);
  EndTransformThreads();
}

void PlanWithThreads(int count) { fftw_plan_with_nthreads(count); }

fftw_plan_s* PlanForward(int rows, int columns, double* spatial, double (*spectrum)[2],
                         unsigned flags) {
  return fftw_plan_dft_r2c_2d(rows, columns, spatial, spectrum, flags);
}

fftw_plan_s* PlanInverse(int rows, int columns, double (*spectrum)[2], double* spatial,
                         unsigned flags) {
  return fftw_plan_dft_c2r_2d(rows, columns, spectrum, spatial, flags);
}

void Execute(fftw_plan_s* plan) { fftw_execute(plan); }
void DestroyPlan(fftw_plan_s* plan) { fftw_destroy_plan(plan); }

static_assert(kPlanEstimate == FFTW_ESTIMATE && kPlanMeasure == FFTW_MEASURE);

// Null stands for the library's own table, so that no static needs to be built first.
std::atomic<const FftCalls*> inForce{nullptr};

// Engines alive, and what the library answered to the first of them. Under the lock.
unsigned engines = 0;
unsigned threadsReady = 0;

}  // namespace

// Where the library is a part of a module, its text comes along by this alone: hosts find it in the
// module's file.
[[gnu::used]] const char* const kFftVersion = fftw_version;

const FftCalls& LibraryFftCalls() {
  static constexpr FftCalls kTable = {
      .initThreads = StartThreads,
      .cleanupThreads = EndThreads,
      .planWithThreads = PlanWithThreads,
      .planForward = PlanForward,
      .planInverse = PlanInverse,
      .execute = Execute,
      .destroyPlan = DestroyPlan,
      .allocate = fftw_malloc,
      .release = fftw_free,
      .importWisdom = fftw_import_wisdom_from_file,
      .exportWisdom = fftw_export_wisdom_to_file,
  };
  return kTable;
}

const FftCalls& GetFftCalls() {
  const FftCalls* table = inForce.load(std::memory_order_acquire);
  return table != nullptr ? *table : LibraryFftCalls();
}

ScopedFftCalls::ScopedFftCalls(const FftCalls* table)
    : previous_(inForce.exchange(table, std::memory_order_acq_rel)) {}

ScopedFftCalls::~ScopedFftCalls() { inForce.store(previous_, std::memory_order_release); }

std::mutex& FftPlannerLock() {
  static std::mutex lock;
  return lock;
}

unsigned AcquireFftThreads() {
  const std::scoped_lock hold(FftPlannerLock());
  if (engines == 0) {
    threadsReady = static_cast<unsigned>(GetFftCalls().initThreads());
  }
  ++engines;
  return threadsReady;
}

void ReleaseFftThreads() {
  const std::scoped_lock hold(FftPlannerLock());
  --engines;
  if (engines == 0) {
    GetFftCalls().cleanupThreads();
  }
}

}  // namespace lx
