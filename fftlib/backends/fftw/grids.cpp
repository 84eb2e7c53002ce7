// The engine's grids and plans: N x N doubles, their spectra, and what transforms them.
#include <cstddef>
#include <cstring>
#include <mutex>

#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/fftlib.h"

namespace lx {
namespace {

std::size_t GridBytes(std::int32_t side) {
  return static_cast<std::size_t>(side) * static_cast<std::size_t>(side) * sizeof(double);
}

std::size_t SpectrumBytes(std::int32_t side) {
  return static_cast<std::size_t>(side) * static_cast<std::size_t>(side / 2 + 1) *
         sizeof(DefocusEngine::Complex);
}

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

void DestroyPlan(DefocusEngine::Plan* plan) {
  if (*plan != nullptr) {
    const std::scoped_lock hold(FftPlannerLock());
    GetFftCalls().destroyPlan(*plan);
    *plan = nullptr;
  }
}

}  // namespace

// create(flags) makes the plan. Other engines may be planning on other threads.
template <class Create>
bool DefocusEngine::MakePlan(Plan* plan, Create create) {
  if (*plan != nullptr) {
    return true;
  }
  const std::scoped_lock hold(FftPlannerLock());
  // The library forbids the call when its threads did not start.
  if (threadsReady != 0) {
    GetFftCalls().planWithThreads(static_cast<int>(threadCount));
  }
  // A file that could not be read is tried again at the next plan.
  if (useWisdom != 0 && wisdomLoaded == 0) {
    ImportWisdom();
  }
  *plan = create(useWisdom != 0 ? kPlanMeasure : kPlanEstimate);
  if (*plan == nullptr) {
    return Fail(kStatusNoPlan);
  }
  if (useWisdom != 0) {
    ExportWisdom();
  }
  return true;
}

bool DefocusEngine::PreparePsfGrids() {
  const std::int32_t side = gridWidth_;
  if (!AllocateMissing(&psfSpatial, GridBytes(side), true) ||
      !AllocateMissing(&psfSpectrum, SpectrumBytes(side), true)) {
    return Fail(kStatusNoMemory);
  }
  if (psfPlan != nullptr) {
    return true;
  }
  const bool made = MakePlan(&psfPlan, [&](unsigned flags) {
    return GetFftCalls().planForward(side, side, psfSpatial, psfSpectrum, flags);
  });
  // Measuring a plan overwrites its arrays, and the PSF relies on the zeros outside the
  // frame's rectangle.
  if (useWisdom != 0) {
    std::memset(psfSpatial, 0, GridBytes(side));
    std::memset(psfSpectrum, 0, SpectrumBytes(side));
  }
  return made;
}

bool DefocusEngine::PrepareWorkGrids(bool clearNew) {
  const std::int32_t side = gridWidth_;
  const bool isNew = workSpatial == nullptr || workSpectrum == nullptr;
  const bool planned = forwardPlan != nullptr && inversePlan != nullptr;
  if (!AllocateMissing(&workSpatial, GridBytes(side), clearNew) ||
      !AllocateMissing(&workSpectrum, SpectrumBytes(side), clearNew)) {
    return Fail(kStatusNoMemory);
  }
  const bool made =
      MakePlan(&forwardPlan,
               [&](unsigned flags) {
                 return GetFftCalls().planForward(side, side, workSpatial, workSpectrum, flags);
               }) &&
      MakePlan(&inversePlan, [&](unsigned flags) {
        return GetFftCalls().planInverse(side, side, workSpectrum, workSpatial, flags);
      });
  if (clearNew && (isNew || !planned) && useWisdom != 0) {
    std::memset(workSpatial, 0, GridBytes(side));
    std::memset(workSpectrum, 0, SpectrumBytes(side));
  }
  return made;
}

bool DefocusEngine::PrepareResult(double** result) {
  return AllocateMissing(result, GridBytes(gridWidth_), false) || Fail(kStatusNoMemory);
}

void DefocusEngine::FreeGrids() {
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
