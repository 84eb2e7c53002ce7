// The kernel modes: a mask becomes a spectrum, and frames are convolved with it, by the
// fixed-size transforms, row by row and column by column.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "baselib/utils/convert.h"
#include "baselib/utils/heap.h"
#include "fftlib/backends/kernels/passes.h"
#include "fftlib/core/complex_sample.h"
#include "fftlib/fftlib.h"
#include "fftlib/psf/normalise.h"

namespace lx {
namespace {

constexpr std::uint32_t kColourBits = kBitLuma | kBitCr | kBitCb;
constexpr std::int32_t kPlanes = 4;

bool IsPaddedSide(std::int64_t side) { return side >= 2 && side <= kLargestPaddedSize; }

}  // namespace

void DefocusEngine::FreeKernelGrids() {
  for (void** grid : {&kernelPsf, &kernelWork, &kernelLuma, &kernelCr, &kernelCb}) {
    lx_aligned_free(*grid, true);
    *grid = nullptr;
  }
}

template <class T>
bool DefocusEngine::PrepareKernelGrid(void** grid, bool clear) {
  if (*grid != nullptr) {
    return true;
  }
  // 2^30 at most.
  const auto bytes =
      static_cast<std::uint32_t>(static_cast<std::size_t>(gridWidth_) *
                                 static_cast<std::size_t>(gridHeight_) * sizeof(ComplexSample<T>));
  *grid = lx_aligned_malloc(bytes, -1, true);
  if (*grid == nullptr) {
    return Fail(kStatusNoMemory);
  }
  if (clear) {
    std::memset(*grid, 0, bytes);
  }
  return true;
}

template <class T>
bool DefocusEngine::LoadPsfKernel(const ImageRec* mask, std::int32_t newMargin) {
  if (!TakeMask(mask, newMargin)) {
    return false;
  }
  const std::int64_t width = PaddedSide(frameWidth, newMargin);
  const std::int64_t height = PaddedSide(frameHeight, newMargin);
  if (!IsPaddedSide(width) || !IsPaddedSide(height)) {
    psfImage = nullptr;
    return Fail(kStatusSizeRange);
  }
  SetGrid(static_cast<std::int32_t>(width), static_cast<std::int32_t>(height));
  offsetX = (paddedWidth - frameWidth) / 2;
  offsetY = (paddedHeight - frameHeight) / 2;
  if (!PrepareKernelGrid<T>(&kernelPsf, true) || !PrepareKernelGrid<T>(&kernelWork, true)) {
    psfImage = nullptr;
    return false;
  }
  // Intended: only the frame's rectangle is written. What the last load left outside it
  // goes into the new PSF.
  passChannelBit = kBitLuma;
  passIsPsf = true;
  passEdgeMode = kEdgeZero;
  passSource = mask;
  passTarget = kernelPsf;
  RunRows(KernelPsfInputPass<T>, mask->height);
  // Intended: the factor is a float in both modes.
  const std::int32_t shifted =
      NormaliseAndShift(static_cast<ComplexSample<T>*>(kernelPsf), paddedWidth, paddedHeight,
                        [](double scale) { return static_cast<T>(NarrowToFloat(scale)); });
  if (shifted != kStatusOk) {
    psfImage = nullptr;
    return Fail(shifted);
  }
  // The spectrum is scaled here, so that runs need not scale what they make of it.
  RunRows(ForwardRowsPass<T>, paddedHeight);
  RunRows(ForwardColumnsPass<T>, paddedWidth);
  if (GetStatus() == kStatusOk) {
    RunRows(ScaleRowsPass<T>, paddedHeight);
    RunRows(ScaleColumnsPass<T>, paddedWidth);
  }
  if (GetStatus() != kStatusOk) {
    psfImage = nullptr;
    return false;
  }
  return true;
}

bool DefocusEngine::CheckKernelRun(const ImageRec* dest) {
  if (psfImage == nullptr || kernelPsf == nullptr || kernelWork == nullptr ||
      sourceImage == nullptr || !FitsGrid()) {
    return Fail(kStatusNotLoaded);
  }
  return CheckDestination(dest);
}

// One plane from input pass to inverse transform, in kernelWork.
template <class T>
bool DefocusEngine::TransformKernelPlane(PassFunction inputPass) {
  passTarget = kernelWork;
  RunRows(inputPass, sourceImage->height);
  RunRows(ForwardRowsPass<T>, paddedHeight);
  RunRows(ForwardColumnsPass<T>, paddedWidth);
  if (GetStatus() != kStatusOk) {
    return false;
  }
  RunRows(MultiplyRowsPass<T>, paddedHeight);
  RunRows(InverseRowsPass<T>, paddedHeight);
  RunRows(InverseColumnsPass<T>, paddedWidth);
  return GetStatus() == kStatusOk;
}

// A finished plane goes to its result, and chroma leaves a grid of zeros. The next plane's input
// pass does the one on every way, and the other by itself where it writes the whole grid.
template <class T>
void DefocusEngine::FinishKernelPlane(void* result, bool isLast) {
  passKept = result;
  if (!isLast && edgeMode == kEdgeReplicate) {
    return;
  }
  KeepKernelRows<T>(*this, 0, frameHeight - 1);
  passKept = nullptr;
  // Intended: not after luma. With margins of zero its residue goes into the plane of Cr, and
  // alpha's into the next frame's luma.
  if (passChannelBit != kBitLuma) {
    std::memset(kernelWork, 0,
                static_cast<std::size_t>(gridWidth_) * static_cast<std::size_t>(gridHeight_) *
                    sizeof(ComplexSample<T>));
  }
}

template <class T>
bool DefocusEngine::ConvolveKernel(ImageRec* dest, std::uint32_t channelMask) {
  if (!CheckKernelRun(dest)) {
    return false;
  }
  if (sourceImage->sampleType == kSampleFloat) {
    return Fail(kStatusFloatImage);
  }
  const std::int32_t channels = std::min<std::int32_t>(sourceImage->channels, dest->channels);
  if (channels < 3 || (channelMask & kColourBits) != kColourBits) {
    return Fail(kStatusChannels);
  }
  const bool withAlpha = channels >= kPlanes && (channelMask & kBitAlpha) != 0;
  const std::int32_t planes = withAlpha ? kPlanes : kPlanes - 1;
  void** const results[] = {&kernelLuma, &kernelCr, &kernelCb};
  passKept = nullptr;
  for (std::int32_t c = 0; c < planes; ++c) {
    SetPlaneParameters(dest, 1U << static_cast<std::uint32_t>(c));
    if (edgeMode == kEdgeZero && (c == 1 || c == 2)) {
      // Chroma's zero.
      auto* samples = static_cast<ComplexSample<T>*>(kernelWork);
      std::for_each_n(samples, static_cast<std::ptrdiff_t>(gridWidth_) * gridHeight_,
                      [](ComplexSample<T>& sample) { sample.re = static_cast<T>(0.5); });
    }
    const bool transformed = TransformKernelPlane<T>(KernelPlaneInputPass<T>);
    passKept = nullptr;
    if (!transformed) {
      return false;
    }
    if (c < 3) {
      if (!PrepareKernelGrid<T>(results[c], false)) {
        return false;
      }
      FinishKernelPlane<T>(*results[c], c == planes - 1);
    }
  }
  passTarget = kernelWork;
  RunRows(KernelPictureOutputPass<T>, dest->height);
  return true;
}

template <class T>
bool DefocusEngine::ConvolveChannelsKernel(ImageRec* dest, std::uint32_t channelMask) {
  if (!CheckKernelRun(dest)) {
    return false;
  }
  const std::int32_t channels = std::min<std::int32_t>(sourceImage->channels, dest->channels);
  for (std::int32_t c = 0; c < channels; ++c) {
    const std::uint32_t bit = 1U << (static_cast<std::uint32_t>(c) & 31U);
    if ((channelMask & bit) == 0) {
      continue;
    }
    SetPlaneParameters(dest, bit);
    passChannel = c;
    if (!TransformKernelPlane<T>(KernelChannelInputPass<T>)) {
      return false;
    }
    RunRows(KernelChannelOutputPass<T>, dest->height);
  }
  return true;
}

template bool DefocusEngine::LoadPsfKernel<float>(const ImageRec*, std::int32_t);
template bool DefocusEngine::LoadPsfKernel<double>(const ImageRec*, std::int32_t);
template bool DefocusEngine::ConvolveKernel<float>(ImageRec*, std::uint32_t);
template bool DefocusEngine::ConvolveKernel<double>(ImageRec*, std::uint32_t);
template bool DefocusEngine::ConvolveChannelsKernel<float>(ImageRec*, std::uint32_t);
template bool DefocusEngine::ConvolveChannelsKernel<double>(ImageRec*, std::uint32_t);

}  // namespace lx
