// SPDX-License-Identifier: BSD-3-Clause
// One engine's hold on the transform library: its threads, how plans are made, and their wisdom.
#pragma once

#include <cstdint>
#include <mutex>

#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/backends/transform_library.h"

namespace lx {

class FftLibrary final : public TransformLibrary {
 public:
  // Starts the library's threads with the first of all, and looks whether plans are to be measured.
  FftLibrary();
  // Ends the threads with the last. Plans must be gone.
  ~FftLibrary() override;

  bool HasThreads() const override { return threadsReady_ != 0; }
  bool ImportWisdom() override;
  bool ExportWisdom() override;

  // Measuring overwrites the arrays that a plan is made for.
  bool Measures() const { return measures_; }

  // Makes a plan by create(flags), with wisdom around it where plans are measured. Other engines
  // may be planning on other threads. Null where the library has none.
  template <class Create>
  fftw_plan_s* MakePlan(Create create) {
    const std::scoped_lock hold(FftPlannerLock());
    BeginPlan();
    fftw_plan_s* plan = create(measures_ ? kPlanMeasure : kPlanEstimate);
    if (plan != nullptr && measures_) {
      ExportWisdom();
    }
    return plan;
  }

  // Writes what was learnt for the last time; ahead of the end of plans. A second call does
  // nothing.
  void KeepWisdom();

  // For tests.
  std::uint32_t ThreadsReady() const { return threadsReady_; }
  std::uint32_t ThreadCount() const { return threadCount_; }
  bool HasReadWisdom() const { return wisdomRead_; }

 private:
  void BeginPlan();

  std::uint32_t threadsReady_;
  std::uint32_t threadCount_;  // given to the planner
  bool measures_;
  bool wisdomRead_ = false;
  bool wisdomKept_ = false;
};

}  // namespace lx
