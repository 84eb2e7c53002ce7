// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fftw/fft_grids.h"

#include <cstddef>
#include <cstring>
#include <mutex>

#include "baselib/platform/platform.h"
#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/core/status.h"

namespace lx {
namespace {

std::size_t GridBytes(std::int32_t side) {
  return static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * sizeof(double);
}

std::size_t SpectrumBytes(std::int32_t side) {
  return static_cast<std::size_t>(side) * static_cast<std::size_t>(side / 2 + 1) *
         sizeof(FftGrids::Complex);
}

// From here on finding pages, which are 4 KiB each unless the system is told otherwise, takes an
// eighth of a frame, and more in larger grids. Below this the heap uses a block's addresses again
// for others.
constexpr std::size_t kLeastAdvisedSide = 1024;
constexpr std::size_t kLeastAdvisedBytes = kLeastAdvisedSide * kLeastAdvisedSide * sizeof(double);

// Allocates what is missing. False where memory has run out.
template <class Block>
bool AllocateMissing(Block** block, std::size_t bytes, bool clear) {
  if (*block != nullptr) {
    return true;
  }
  *block = static_cast<Block*>(GetFftCalls().allocate(bytes));
  if (*block == nullptr) {
    return false;
  }
  if (bytes >= kLeastAdvisedBytes) {
    GetPlatform().adviseHugePages(*block, bytes);
  }
  if (clear) {
    std::memset(static_cast<void*>(*block), 0, bytes);
  }
  return true;
}

template <class Block>
void FreeBlock(Block** block) {
  if (*block != nullptr) {
    GetFftCalls().release(*block);
    *block = nullptr;
  }
}

void DestroyPlan(FftGrids::Plan* plan) {
  if (*plan != nullptr) {
    const std::scoped_lock hold(FftPlannerLock());
    GetFftCalls().destroyPlan(*plan);
    *plan = nullptr;
  }
}

// create(flags) makes the plan.
template <class Create>
std::int32_t MakePlan(FftGrids::Plan* plan, FftLibrary* library, Create create) {
  if (*plan == nullptr) {
    *plan = library->MakePlan(create);
  }
  return *plan != nullptr ? kStatusOk : kStatusNoPlan;
}

}  // namespace

std::int32_t FftGrids::PreparePsf(std::int32_t side, FftLibrary* library) {
  if (!AllocateMissing(&psfSpatial, GridBytes(side), true) ||
      !AllocateMissing(&psfSpectrum, SpectrumBytes(side), true)) {
    return kStatusNoMemory;
  }
  if (psfPlan != nullptr) {
    return kStatusOk;
  }
  const std::int32_t made = MakePlan(&psfPlan, library, [&](unsigned flags) {
    return GetFftCalls().planForward(side, side, psfSpatial, psfSpectrum, flags);
  });
  // Measuring overwrites the grids, and the PSF relies on the zeros outside the frame's rectangle.
  if (library->Measures()) {
    std::memset(psfSpatial, 0, GridBytes(side));
    std::memset(psfSpectrum, 0, SpectrumBytes(side));
  }
  return made;
}

std::int32_t FftGrids::PrepareWork(std::int32_t side, bool clearNew, FftLibrary* library) {
  const bool isNew = workSpatial == nullptr || workSpectrum == nullptr;
  const bool planned = forwardPlan != nullptr && inversePlan != nullptr;
  if (!AllocateMissing(&workSpatial, GridBytes(side), clearNew) ||
      !AllocateMissing(&workSpectrum, SpectrumBytes(side), clearNew)) {
    return kStatusNoMemory;
  }
  std::int32_t made = MakePlan(&forwardPlan, library, [&](unsigned flags) {
    return GetFftCalls().planForward(side, side, workSpatial, workSpectrum, flags);
  });
  if (made == kStatusOk) {
    made = MakePlan(&inversePlan, library, [&](unsigned flags) {
      return GetFftCalls().planInverse(side, side, workSpectrum, workSpatial, flags);
    });
  }
  if (clearNew && (isNew || !planned) && library->Measures()) {
    std::memset(workSpatial, 0, GridBytes(side));
    std::memset(workSpectrum, 0, SpectrumBytes(side));
  }
  return made;
}

std::int32_t FftGrids::PrepareResult(std::int32_t side, double** result) {
  return AllocateMissing(result, GridBytes(side), false) ? kStatusOk : kStatusNoMemory;
}

void FftGrids::Free() {
  for (Plan* plan : {&psfPlan, &forwardPlan, &inversePlan}) {
    DestroyPlan(plan);
  }
  FreeBlock(&psfSpatial);
  FreeBlock(&psfSpectrum);
  FreeBlock(&workSpatial);
  FreeBlock(&workSpectrum);
  FreeBlock(&lumaResult);
  FreeBlock(&crResult);
  FreeBlock(&cbResult);
}

}  // namespace lx
