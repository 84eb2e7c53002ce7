// SPDX-License-Identifier: BSD-3-Clause
// What a test may see of an engine beyond its operations: the one place that knows where it is
// kept.
#pragma once

#include <cstdint>
#include <string_view>

#include "fftlib/backends/fftw/fftw_backend.h"
#include "fftlib/backends/kernels/kernel_backend.h"
#include "fftlib/fftlib.h"

namespace lx {

// The engine's friend.
class EngineInside {
 public:
  explicit EngineInside(const DefocusEngine& engine)
      : engine_(const_cast<DefocusEngine&>(engine)) {}

  std::string_view backendName() const { return engine_.backend_->Name(); }

  // What the engine was told; the mode as the integer of its back-end.
  std::int32_t engineMode() const {
    if (engine_.backend_ == nullptr) {
      return kModeNone;
    }
    const std::string_view name = engine_.backend_->Name();
    return name == "exact" ? kModeFftw : name == "double" ? kModeKernelF64 : kModeKernelF32;
  }
  float emphasis() const { return engine_.look_.emphasis; }
  bool emphasisAlpha() const { return engine_.look_.emphasisAlpha; }
  std::int32_t edgeMode() const { return engine_.look_.edgeMode; }
  float gamma() const { return engine_.gamma_.gamma; }
  bool gammaActive() const { return engine_.gamma_.active; }
  float outputGain() const { return engine_.gamma_.gain; }
  float outputOffset() const { return engine_.gamma_.offset; }
  float psfSoftness() const { return engine_.psfSoftness_; }
  float aspectX() const { return engine_.aspectX_; }
  float aspectY() const { return engine_.aspectY_; }
  ParallelForFunction parallelFor() const { return engine_.parallelFor_; }
  CancelQueryFunction cancelQuery() const { return engine_.rows_.GetCancelQuery(); }
  void* callbackContext() const { return engine_.rows_.Context(); }

  // The frame, its mask, and where it lies in the grid.
  const ImageRec* psfImage() const { return engine_.psfImage_; }
  const ImageRec* sourceImage() const { return engine_.sourceImage_; }
  ImageRec* psfMask() const { return engine_.psfMask_.get(); }
  std::int32_t frameWidth() const { return engine_.place_.frame.width; }
  std::int32_t frameHeight() const { return engine_.place_.frame.height; }
  std::int32_t paddedWidth() const { return engine_.place_.grid.width; }
  std::int32_t paddedHeight() const { return engine_.place_.grid.height; }
  std::int32_t offsetX() const { return engine_.place_.offsetX; }
  std::int32_t offsetY() const { return engine_.place_.offsetY; }
  std::int32_t margin() const { return engine_.margin_; }

  // The passes, and which kind is in work.
  Rows& rows() const { return engine_.rows_; }
  void SetStatus(std::int32_t code) const { engine_.rows_.SetStatus(code); }

  // The transform library and its grids and plans: null in the kernel modes.
  const double* psfSpatial() const { return Fft().psfSpatial; }
  const double (*psfSpectrum() const)[2] { return Fft().psfSpectrum; }
  const double* workSpatial() const { return Fft().workSpatial; }
  const double* lumaResult() const { return Fft().lumaResult; }
  const double* crResult() const { return Fft().crResult; }
  const double* cbResult() const { return Fft().cbResult; }
  FftGrids::Plan psfPlan() const { return Fft().psfPlan; }
  FftGrids::Plan forwardPlan() const { return Fft().forwardPlan; }
  FftGrids::Plan inversePlan() const { return Fft().inversePlan; }
  std::uint32_t threadsReady() const { return Library().ThreadsReady(); }
  std::uint32_t threadCount() const { return Library().ThreadCount(); }
  std::int32_t useWisdom() const { return Library().Measures() ? 1 : 0; }
  std::int32_t wisdomLoaded() const { return Library().HasReadWisdom() ? 1 : 0; }

  // The grids of the kernel modes: null in that of the transform library.
  void* kernelPsf() const {
    return Kernel([](const auto& grids) -> void* { return grids.psf; });
  }
  void* kernelWork() const {
    return Kernel([](const auto& grids) -> void* { return grids.work; });
  }
  void* kernelLuma() const {
    return Kernel([](const auto& grids) -> void* { return grids.luma; });
  }
  void* kernelCr() const {
    return Kernel([](const auto& grids) -> void* { return grids.cr; });
  }
  void* kernelCb() const {
    return Kernel([](const auto& grids) -> void* { return grids.cb; });
  }

  // The separable filter.
  const ImageRec* separableSource() const { return engine_.separable_.Source(); }
  ImageRec* separableWork() const { return engine_.separable_.Work(); }
  std::int32_t separableWidth() const { return engine_.separable_.ImageSize().width; }
  std::int32_t separableHeight() const { return engine_.separable_.ImageSize().height; }
  std::int32_t separablePaddedWidth() const { return engine_.separable_.PaddedSize().width; }
  std::int32_t separablePaddedHeight() const { return engine_.separable_.PaddedSize().height; }
  const float* separableKernel() const { return engine_.separable_.Weights(); }
  std::int32_t separableKernelLength() const { return engine_.separable_.WeightCount(); }

  // The blocks' table of frequencies.
  std::int32_t* frequencyTable() const { return engine_.blocks_.Table(); }
  std::int32_t frequencyTableSize() const { return engine_.blocks_.TableSize(); }

 private:
  const FftGrids& Fft() const {
    static const FftGrids none;
    const auto* fftw = dynamic_cast<const FftwBackend*>(engine_.backend_.get());
    return fftw != nullptr ? fftw->Grids() : none;
  }

  const FftLibrary& Library() const { return dynamic_cast<const FftLibrary&>(*engine_.Library()); }

  template <class Member>
  void* Kernel(Member member) const {
    const Backend* backend = engine_.backend_.get();
    if (const auto* single = dynamic_cast<const KernelBackend<float>*>(backend)) {
      return member(single->GetGrids());
    }
    if (const auto* wide = dynamic_cast<const KernelBackend<double>*>(backend)) {
      return member(wide->GetGrids());
    }
    return nullptr;
  }

  DefocusEngine& engine_;
};

}  // namespace lx

namespace lx_test {

using Inside = lx::EngineInside;

}  // namespace lx_test
