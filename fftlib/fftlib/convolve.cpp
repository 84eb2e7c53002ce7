// The main run: luma, chroma and alpha planes through the PSF's spectrum.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "fftlib/fftlib.h"
#include "fftlib/fftlib/fft_calls.h"
#include "fftlib/fftlib/passes.h"

namespace lx {
namespace {

constexpr std::uint32_t kColourBits = kBitLuma | kBitCr | kBitCb;
constexpr std::int32_t kPlanes = 4;

}  // namespace

bool DefocusEngine::ConvolveFftw(ImageRec* dest, std::uint32_t channelMask) {
  if (!CheckRun(dest)) {
    return false;
  }
  const std::int32_t channels = std::min(sourceImage->channels, dest->channels);
  if (channels < 3 || (channelMask & kColourBits) != kColourBits) {
    return Fail(kStatusChannels);
  }
  // Every plane overwrites the work grids whole, so they need no clearing.
  if (!PrepareWorkGrids(false)) {
    return false;
  }
  double** const results[] = {&lumaResult, &crResult, &cbResult};
  for (std::int32_t c = 0; c < std::min(channels, kPlanes); ++c) {
    const std::uint32_t bit = 1U << static_cast<std::uint32_t>(c);
    if ((channelMask & bit) == 0) {
      continue;
    }
    SetPlaneParameters(dest, bit);
    TransformPlane(PlaneInputPass);
    if (c < 3) {
      if (!PrepareResult(results[c])) {
        return false;
      }
      KeepPlane(*results[c]);
    }
  }
  passTarget = workSpatial;
  RunRows(PictureOutputPass, dest->height);
  return true;
}

void DefocusEngine::SetPlaneParameters(ImageRec* dest, std::uint32_t channelBit) {
  passChannelBit = channelBit;
  passDest = dest;
  passSource = sourceImage;
  passIsPsf = false;
  passEdgeMode = edgeMode;
  passTarget = workSpatial;
}

void DefocusEngine::TransformPlane(PassFunction inputPass) {
  RunRows(inputPass, sourceImage->height);
  PadRows();
  GetFftCalls().execute(forwardPlan);
  RunRows(MultiplyPass, gridSize_);
  GetFftCalls().execute(inversePlan);
}

// The grid's rows above and below the frame repeat its first and last one.
void DefocusEngine::PadRows() {
  if (passEdgeMode != kEdgeReplicate) {
    return;
  }
  const auto row = [this](std::int32_t y) {
    return workSpatial + static_cast<std::ptrdiff_t>(y) * gridSize_;
  };
  const std::size_t bytes = static_cast<std::size_t>(gridSize_) * sizeof(double);
  const std::int32_t lastRow = offsetY + sourceImage->height - 1;
  for (std::int32_t y = 0; y < offsetY; ++y) {
    std::memcpy(row(y), row(offsetY), bytes);
  }
  for (std::int32_t y = lastRow + 1; y < gridSize_; ++y) {
    std::memcpy(row(y), row(lastRow), bytes);
  }
}

// The output pass reads the frame's rectangle only, so only that is kept.
void DefocusEngine::KeepPlane(double* result) const {
  const std::size_t bytes = static_cast<std::size_t>(frameWidth) * sizeof(double);
  for (std::int32_t y = 0; y < frameHeight; ++y) {
    const std::ptrdiff_t start = static_cast<std::ptrdiff_t>(offsetY + y) * gridSize_ + offsetX;
    std::memcpy(result + start, workSpatial + start, bytes);
  }
}

}  // namespace lx
