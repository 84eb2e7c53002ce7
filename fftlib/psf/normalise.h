// SPDX-License-Identifier: BSD-3-Clause
// A PSF becomes one of sum 1 whose middle is sample (0, 0).
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <numeric>

#include "baselib/utils/heap.h"
#include "fftlib/core/complex_sample.h"
#include "fftlib/core/status.h"

namespace lx {

inline double ValueOf(double sample) { return sample; }
template <class T>
double ValueOf(ComplexSample<T> sample) {
  return sample.re;
}

// One sum for every eighth sample: one sum alone would wait for its last addition. The
// order is fixed, so the result does not depend on the machine.
template <class Sample>
double SumOf(const Sample* samples, std::ptrdiff_t count) {
  constexpr std::ptrdiff_t kSums = 8;
  double sums[kSums] = {};
  std::ptrdiff_t i = 0;
  for (; i + kSums <= count; i += kSums) {
    for (std::ptrdiff_t s = 0; s < kSums; ++s) {
      sums[s] += ValueOf(samples[i + s]);
    }
  }
  for (; i < count; ++i) {
    sums[0] += ValueOf(samples[i]);
  }
  return std::accumulate(sums, sums + kSums, 0.0);
}

// A row rotated left by half and scaled, into another row.
template <class Sample, class Scale>
void ScaleAndRotateRow(const Sample* from, Sample* to, std::int32_t width, Scale scale) {
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
template <class Sample, class Scale>
void ScaleAndRotate(Sample* buffer, std::int32_t width, std::int32_t height, Scale scale,
                    Sample* line) {
  const std::int32_t half = height / 2;
  const auto row = [&](std::int32_t y) { return buffer + static_cast<std::ptrdiff_t>(y) * width; };
  const std::int32_t cycles = std::gcd(height, half);  // the height itself where half is 0
  for (std::int32_t start = 0; start < cycles; ++start) {
    std::uninitialized_copy_n(row(start), width, line);
    std::int32_t y = start;
    for (std::int32_t next = (y + half) % height; next != start; next = (y + half) % height) {
      ScaleAndRotateRow(row(next), row(y), width, scale);
      y = next;
    }
    ScaleAndRotateRow(line, row(y), width, scale);
  }
}

// kStatusOk, or kStatusNoMemory with the buffer as it was.
//   hold  gives the factor the precision that it is held in
template <class Sample, class Hold>
std::int32_t NormaliseAndShift(Sample* buffer, std::int32_t width, std::int32_t height, Hold hold) {
  const auto length = static_cast<std::uint32_t>(std::max(width, height));
  auto* line = static_cast<Sample*>(lx_malloc(length * static_cast<std::uint32_t>(sizeof(Sample))));
  if (line == nullptr) {
    return kStatusNoMemory;
  }
  // Intended: no guard. A buffer of zeros becomes not-a-number throughout.
  const double sum = SumOf(buffer, static_cast<std::ptrdiff_t>(width) * height);
  ScaleAndRotate(buffer, width, height, hold(1.0 / sum), line);
  lx_free(line);
  return kStatusOk;
}

// The same for a grid of plain numbers.
inline std::int32_t NormaliseAndShiftPsf(double* buffer, std::int32_t width, std::int32_t height) {
  return NormaliseAndShift(buffer, width, height, [](double scale) { return scale; });
}

}  // namespace lx
