// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/fft_recorder.h"

#include <algorithm>
#include <cstddef>

namespace lx_test {
namespace {

std::vector<std::string> entries;
int initAnswer = -1;
int refusePlanAt = 0;
int refuseAllocationAt = 0;
bool overwrite = false;

const lx::FftCalls& Real() { return lx::LibraryFftCalls(); }

int InitThreads() {
  entries.emplace_back("init");
  return initAnswer >= 0 ? initAnswer : Real().initThreads();
}

void CleanupThreads() {
  entries.emplace_back("cleanup");
  Real().cleanupThreads();
}

void PlanWithThreads(int count) {
  entries.push_back("threads " + std::to_string(count));
  Real().planWithThreads(count);
}

bool Refuses(int* countdown) { return *countdown > 0 && --*countdown == 0; }

// Measuring takes long and depends on the machine; the arrays are overwritten here instead.
unsigned FlagsToUse(unsigned flags) { return overwrite ? lx::kPlanEstimate : flags; }

void OverwriteBoth(int side, double* spatial, double (*spectrum)[2]) {
  if (overwrite) {
    const auto n = static_cast<std::size_t>(side);
    std::fill_n(spatial, n * n, 7.0);
    std::fill_n(&spectrum[0][0], n * (n / 2 + 1) * 2, 7.0);
  }
}

fftw_plan_s* PlanForward(int rows, int columns, double* spatial, double (*spectrum)[2],
                         unsigned flags) {
  entries.push_back("forward " + std::to_string(rows) + " flags " + std::to_string(flags));
  if (Refuses(&refusePlanAt)) {
    return nullptr;
  }
  auto* plan = Real().planForward(rows, columns, spatial, spectrum, FlagsToUse(flags));
  OverwriteBoth(rows, spatial, spectrum);
  return plan;
}

fftw_plan_s* PlanInverse(int rows, int columns, double (*spectrum)[2], double* spatial,
                         unsigned flags) {
  entries.push_back("inverse " + std::to_string(rows) + " flags " + std::to_string(flags));
  if (Refuses(&refusePlanAt)) {
    return nullptr;
  }
  auto* plan = Real().planInverse(rows, columns, spectrum, spatial, FlagsToUse(flags));
  OverwriteBoth(rows, spatial, spectrum);
  return plan;
}

void Execute(fftw_plan_s* plan) {
  entries.emplace_back("execute");
  Real().execute(plan);
}

void DestroyPlan(fftw_plan_s* plan) {
  entries.emplace_back("destroy");
  Real().destroyPlan(plan);
}

void* Allocate(std::size_t bytes) {
  entries.push_back("allocate " + std::to_string(bytes));
  return Refuses(&refuseAllocationAt) ? nullptr : Real().allocate(bytes);
}

void Release(void* block) {
  entries.emplace_back("release");
  Real().release(block);
}

int ImportWisdom(std::FILE* file) {
  entries.emplace_back("import");
  return Real().importWisdom(file);
}

void ExportWisdom(std::FILE* file) {
  entries.emplace_back("export");
  Real().exportWisdom(file);
}

}  // namespace

FftRecorder::FftRecorder()
    : table_{InitThreads, CleanupThreads, PlanWithThreads, PlanForward,  PlanInverse, Execute,
             DestroyPlan, Allocate,       Release,         ImportWisdom, ExportWisdom},
      scope_(&table_) {
  entries.clear();
  initAnswer = -1;
  refusePlanAt = 0;
  refuseAllocationAt = 0;
  overwrite = false;
}

FftRecorder::~FftRecorder() = default;

const std::vector<std::string>& FftRecorder::Log() const { return entries; }
void FftRecorder::Clear() { entries.clear(); }

int FftRecorder::Count(const std::string& call) const {
  return static_cast<int>(std::count_if(
      entries.begin(), entries.end(), [&](const auto& entry) { return entry.starts_with(call); }));
}

void FftRecorder::AnswerInit(int result) { initAnswer = result; }
void FftRecorder::RefusePlan(int n) { refusePlanAt = n; }
void FftRecorder::RefuseAllocation(int n) { refuseAllocationAt = n; }
void FftRecorder::OverwriteArrays() { overwrite = true; }

}  // namespace lx_test
