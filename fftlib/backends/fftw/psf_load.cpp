// A mask becomes the PSF's spectrum.
#include <algorithm>
#include <cstdint>

#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/backends/fftw/passes.h"
#include "fftlib/fftlib.h"
#include "fftlib/psf/normalise.h"

namespace lx {

bool DefocusEngine::LoadPsfFftw(const ImageRec* mask, std::int32_t newMargin) {
  if (!TakeMask(mask, newMargin)) {
    return false;
  }
  const std::int64_t side =
      std::max(PaddedSide(frameWidth, newMargin), PaddedSide(frameHeight, newMargin));
  if (side < 2 || side > kLargestPaddedSize) {
    psfImage = nullptr;
    return Fail(kStatusSizeRange);
  }
  const auto n = static_cast<std::int32_t>(side);
  SetGrid(n, n);
  offsetX = (n - frameWidth) / 2;
  offsetY = (n - frameHeight) / 2;
  if (!PreparePsfGrids()) {
    return false;
  }
  // Intended: only the frame's rectangle is written. What the last load left outside it
  // goes into the new PSF.
  passChannelBit = kBitLuma;
  passIsPsf = true;
  passEdgeMode = kEdgeZero;
  passSource = mask;
  passTarget = psfSpatial;
  RunRows(PsfInputPass, mask->height);
  const std::int32_t shifted = NormaliseAndShiftPsf(psfSpatial, n, n);
  if (shifted != kStatusOk) {
    return Fail(shifted);
  }
  GetFftCalls().execute(psfPlan);
  return true;
}

std::int32_t DefocusEngine::NormaliseAndShiftPsf(double* buffer, std::int32_t width,
                                                 std::int32_t height) {
  return NormaliseAndShift(buffer, width, height, [](double scale) { return scale; });
}

}  // namespace lx
