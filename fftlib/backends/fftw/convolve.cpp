// The main run: luma, chroma and alpha planes through the PSF's spectrum.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/backends/fftw/passes.h"
#include "fftlib/fftlib.h"

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
  passKept = nullptr;
  for (std::int32_t c = 0; c < std::min(channels, kPlanes); ++c) {
    const std::uint32_t bit = 1U << static_cast<std::uint32_t>(c);
    if ((channelMask & bit) == 0) {
      continue;
    }
    SetPlaneParameters(dest, bit);
    TransformPlane(PlaneInputPass);
    passKept = nullptr;
    if (c < 3) {
      if (!PrepareResult(results[c])) {
        return false;
      }
      passKept = *results[c];
    }
  }
  KeepRows(*this, 0, frameHeight - 1);
  passKept = nullptr;
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
  GetFftCalls().execute(forwardPlan);
  RunRows(MultiplyPass, gridHeight_);
  GetFftCalls().execute(inversePlan);
}

}  // namespace lx
