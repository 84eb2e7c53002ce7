// What a test may see of an engine beyond its operations: the one place that knows where it is
// kept.
#pragma once

#include <cstdint>

#include "fftlib/fftlib.h"

namespace lx_test {

// Looks into one engine. Borrows it; a value that is read is the one of that moment.
class Inside {
 public:
  explicit Inside(const lx::DefocusEngine& engine)
      : engine_(const_cast<lx::DefocusEngine&>(engine)) {}

  // What the engine was told.
  std::int32_t engineMode() const { return engine_.engineMode; }
  float emphasis() const { return engine_.emphasis; }
  bool emphasisAlpha() const { return engine_.emphasisAlpha; }
  float gamma() const { return engine_.gamma; }
  bool gammaActive() const { return engine_.gammaActive; }
  float outputGain() const { return engine_.outputGain; }
  float outputOffset() const { return engine_.outputOffset; }
  float psfSoftness() const { return engine_.psfSoftness; }
  std::int32_t edgeMode() const { return engine_.edgeMode; }
  float aspectX() const { return engine_.aspectX; }
  float aspectY() const { return engine_.aspectY; }
  void* callbackContext() const { return engine_.callbackContext; }
  lx::ParallelForFunction parallelFor() const { return engine_.parallelFor; }
  lx::CancelQueryFunction cancelQuery() const { return engine_.cancelQuery; }

  // The frame, its mask, and where it lies in the grid.
  const lx::ImageRec* psfImage() const { return engine_.psfImage; }
  const lx::ImageRec* sourceImage() const { return engine_.sourceImage; }
  lx::ImageRec* psfMask() const { return engine_.psfMask; }
  std::int32_t frameWidth() const { return engine_.frameWidth; }
  std::int32_t frameHeight() const { return engine_.frameHeight; }
  std::int32_t paddedWidth() const { return engine_.paddedWidth; }
  std::int32_t paddedHeight() const { return engine_.paddedHeight; }
  std::int32_t offsetX() const { return engine_.offsetX; }
  std::int32_t offsetY() const { return engine_.offsetY; }
  std::int32_t margin() const { return engine_.margin; }

  // The transform library's grids and plans, null in the kernel modes.
  const double* psfSpatial() const { return engine_.psfSpatial; }
  const double (*psfSpectrum() const)[2] { return engine_.psfSpectrum; }
  const double* workSpatial() const { return engine_.workSpatial; }
  const double* lumaResult() const { return engine_.lumaResult; }
  const double* crResult() const { return engine_.crResult; }
  const double* cbResult() const { return engine_.cbResult; }
  fftw_plan_s* psfPlan() const { return engine_.psfPlan; }
  fftw_plan_s* forwardPlan() const { return engine_.forwardPlan; }
  fftw_plan_s* inversePlan() const { return engine_.inversePlan; }
  std::uint32_t threadsReady() const { return engine_.threadsReady; }
  std::uint32_t threadCount() const { return engine_.threadCount; }
  std::int32_t useWisdom() const { return engine_.useWisdom; }
  std::int32_t wisdomLoaded() const { return engine_.wisdomLoaded; }

  // The grids of the kernel modes, null in that of the transform library.
  void* kernelPsf() const { return engine_.kernelPsf; }
  void* kernelWork() const { return engine_.kernelWork; }
  void* kernelLuma() const { return engine_.kernelLuma; }
  void* kernelCr() const { return engine_.kernelCr; }
  void* kernelCb() const { return engine_.kernelCb; }

  // The separable filter.
  const lx::ImageRec* separableSource() const { return engine_.separableSource; }
  lx::ImageRec* separableWork() const { return engine_.separableWork; }
  std::int32_t separableWidth() const { return engine_.separableWidth; }
  std::int32_t separableHeight() const { return engine_.separableHeight; }
  std::int32_t separablePaddedWidth() const { return engine_.separablePaddedWidth; }
  std::int32_t separablePaddedHeight() const { return engine_.separablePaddedHeight; }
  const float* separableKernel() const { return engine_.separableKernel; }
  std::int32_t separableKernelLength() const { return engine_.separableKernelLength; }

  // The blocks' table of frequencies.
  std::int32_t* frequencyTable() const { return engine_.frequencyTable; }
  std::int32_t frequencyTableSize() const { return engine_.frequencyTableSize; }

  void SetStatus(std::int32_t code) const { engine_.status = code; }

 private:
  lx::DefocusEngine& engine_;
};

}  // namespace lx_test
