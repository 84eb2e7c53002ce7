// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/fft_library.h"

#include <mutex>

#include "baselib/platform/platform.h"
#include "baselib/threads/system_info.h"
#include "fftlib/backends/fftw/wisdom.h"

namespace lx {
namespace {

// Any value asks for measured plans, an empty one included.
constexpr const char* kWisdomVariable = "LX_USE_FFTW_WISDOM";

}  // namespace

FftLibrary::FftLibrary()
    : threadsReady_(AcquireFftThreads()),
      threadCount_(get_processor_count()),
      measures_(GetPlatform().hasEnvironmentVariable(kWisdomVariable)) {
  if (measures_) {
    const std::scoped_lock hold(FftPlannerLock());
    MakeWisdomFolder();
  }
}

FftLibrary::~FftLibrary() {
  KeepWisdom();
  ReleaseFftThreads();
}

void FftLibrary::KeepWisdom() {
  if (!measures_ || wisdomKept_) {
    return;
  }
  wisdomKept_ = true;
  const std::scoped_lock hold(FftPlannerLock());
  // An engine that has planned nothing would write a file of nothing over a good one.
  if (!wisdomRead_) {
    ImportWisdom();
  }
  ExportWisdom();
}

bool FftLibrary::ImportWisdom() {
  wisdomRead_ = ReadWisdomFile();
  return wisdomRead_;
}

bool FftLibrary::ExportWisdom() { return WriteWisdomFile(); }

void FftLibrary::BeginPlan() {
  // The library forbids the call when its threads did not start.
  if (threadsReady_ != 0) {
    GetFftCalls().planWithThreads(static_cast<int>(threadCount_));
  }
  // A file that could not be read is tried again at the next plan.
  if (measures_ && !wisdomRead_) {
    ImportWisdom();
  }
}

}  // namespace lx
