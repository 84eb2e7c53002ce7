// A mask becomes the PSF's spectrum.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <numeric>

#include "baselib/utils/heap.h"
#include "fftlib/fftlib.h"
#include "fftlib/fftlib/fft_calls.h"
#include "fftlib/fftlib/passes.h"

namespace lx {
namespace {

std::int64_t PaddedSide(std::int32_t side, std::int32_t margin) {
  return NextPowerOfTwo(side + 2 * std::int64_t{std::max(margin, 0)});
}

// Rotates a row left by half, scaling it. The line holds a row.
void ScaleAndRotateRow(double* row, std::int32_t width, double scale, double* line) {
  const std::int32_t half = width / 2;
  std::copy(row, row + width, line);
  for (std::int32_t x = 0; x < width - half; ++x) {
    row[x] = line[x + half] * scale;
  }
  for (std::int32_t x = width - half; x < width; ++x) {
    row[x] = line[x + half - width] * scale;
  }
}

// Rotates the rows up by half. Whole rows move, along the cycles of the rotation: going
// down columns of a large grid would miss the cache at every sample.
void RotateRows(double* buffer, std::int32_t width, std::int32_t height, double* line) {
  const std::int32_t half = height / 2;
  const auto row = [&](std::int32_t y) { return buffer + static_cast<std::ptrdiff_t>(y) * width; };
  const std::size_t bytes = static_cast<std::size_t>(width) * sizeof(double);
  const std::int32_t cycles = half == 0 ? 0 : std::gcd(height, half);
  for (std::int32_t start = 0; start < cycles; ++start) {
    std::memcpy(line, row(start), bytes);
    std::int32_t y = start;
    for (std::int32_t next = (y + half) % height; next != start; next = (y + half) % height) {
      std::memcpy(row(y), row(next), bytes);
      y = next;
    }
    std::memcpy(row(y), line, bytes);
  }
}

}  // namespace

bool DefocusEngine::LoadPsfFftw(const ImageRec* mask, std::int32_t newMargin) {
  if (!ImageHasSamples(mask)) {
    return Fail(kStatusSizeRange);
  }
  psfImage = mask;
  margin = newMargin;
  frameWidth = mask->width;
  frameHeight = mask->height;
  const std::int64_t side =
      std::max(PaddedSide(frameWidth, newMargin), PaddedSide(frameHeight, newMargin));
  if (side < 2 || side > kLargestPaddedSize) {
    psfImage = nullptr;
    return Fail(kStatusSizeRange);
  }
  const auto n = static_cast<std::int32_t>(side);
  if (n != paddedWidth || n != paddedHeight || n != gridSize_) {
    FreeGrids();
    paddedWidth = n;
    paddedHeight = n;
    gridSize_ = n;
  }
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
  const auto length = static_cast<std::uint32_t>(std::max(width, height));
  auto* line = static_cast<double*>(lx_malloc(length * static_cast<std::uint32_t>(sizeof(double))));
  if (line == nullptr) {
    return kStatusNoMemory;
  }
  const std::ptrdiff_t samples = static_cast<std::ptrdiff_t>(width) * height;
  double sum = 0.0;
  for (std::ptrdiff_t i = 0; i < samples; ++i) {
    sum += buffer[i];
  }
  // Intended: no guard. A buffer of zeros becomes not-a-number throughout.
  const double scale = 1.0 / sum;
  for (std::int32_t y = 0; y < height; ++y) {
    ScaleAndRotateRow(buffer + static_cast<std::ptrdiff_t>(y) * width, width, scale, line);
  }
  RotateRows(buffer, width, height, line);
  lx_free(line);
  return kStatusOk;
}

}  // namespace lx
