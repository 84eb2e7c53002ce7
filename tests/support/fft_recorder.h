// SPDX-License-Identifier: BSD-3-Clause
// The transform library with a log of its calls and faults on demand.
#pragma once

#include <string>
#include <vector>

#include "fftlib/backends/fftw/fft_calls.h"

namespace lx_test {

// In force for the length of a scope, one at a time. Calls go on to the real library.
class FftRecorder {
 public:
  FftRecorder();
  ~FftRecorder();
  FftRecorder(const FftRecorder&) = delete;
  FftRecorder& operator=(const FftRecorder&) = delete;

  // "init", "cleanup", "threads N", "forward N flags F", "inverse N flags F", "execute",
  // "destroy", "allocate BYTES", "release", "import", "export".
  const std::vector<std::string>& Log() const;
  void Clear();
  int Count(const std::string& call) const;  // entries that begin with call

  void AnswerInit(int result);   // without asking the library
  void RefusePlan(int n);        // the n-th plan from now, counted from 1
  void RefuseAllocation(int n);  // the n-th allocation from now, counted from 1

  // Plans overwrite their arrays with 7, as a measuring planner may.
  void OverwriteArrays();

 private:
  lx::FftCalls table_;
  lx::ScopedFftCalls scope_;
};

}  // namespace lx_test
