// A mask becomes the PSF's spectrum.
#include <algorithm>
#include <cstddef>
#include <cstdint>
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

// One sum for every eighth sample: one sum alone would wait for its last addition. The
// order is fixed, so the result does not depend on the machine.
double SumOf(const double* samples, std::ptrdiff_t count) {
  constexpr std::ptrdiff_t kSums = 8;
  double sums[kSums] = {};
  std::ptrdiff_t i = 0;
  for (; i + kSums <= count; i += kSums) {
    for (std::ptrdiff_t s = 0; s < kSums; ++s) {
      sums[s] += samples[i + s];
    }
  }
  for (; i < count; ++i) {
    sums[0] += samples[i];
  }
  return std::accumulate(sums, sums + kSums, 0.0);
}

// A row rotated left by half and scaled, into another row.
void ScaleAndRotateRow(const double* from, double* to, std::int32_t width, double scale) {
  const std::int32_t half = width / 2;
  for (std::int32_t x = 0; x < width - half; ++x) {
    to[x] = from[x + half] * scale;
  }
  for (std::int32_t x = width - half; x < width; ++x) {
    to[x] = from[x + half - width] * scale;
  }
}

// Every row, rotated and scaled, moves up by half the height, along the cycles of that
// move: each row is read and written once. Going down columns would miss the cache at
// every sample. The line holds a row.
void ScaleAndRotate(double* buffer, std::int32_t width, std::int32_t height, double scale,
                    double* line) {
  const std::int32_t half = height / 2;
  const auto row = [&](std::int32_t y) { return buffer + static_cast<std::ptrdiff_t>(y) * width; };
  const std::int32_t cycles = std::gcd(height, half);  // the height itself where half is 0
  for (std::int32_t start = 0; start < cycles; ++start) {
    std::copy_n(row(start), width, line);
    std::int32_t y = start;
    for (std::int32_t next = (y + half) % height; next != start; next = (y + half) % height) {
      ScaleAndRotateRow(row(next), row(y), width, scale);
      y = next;
    }
    ScaleAndRotateRow(line, row(y), width, scale);
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
  // Intended: no guard. A buffer of zeros becomes not-a-number throughout.
  const double scale = 1.0 / SumOf(buffer, static_cast<std::ptrdiff_t>(width) * height);
  ScaleAndRotate(buffer, width, height, scale, line);
  lx_free(line);
  return kStatusOk;
}

}  // namespace lx
