// Square blocks through the fixed-size transforms, and where their frequencies are.
#include <bit>
#include <cstddef>
#include <cstdint>

#include "baselib/utils/heap.h"
#include "fftkernels/fftkernels.h"
#include "fftlib/backends/kernels/passes.h"
#include "fftlib/fftlib.h"

namespace lx {

bool DefocusEngine::CheckBlockSize(std::int32_t size) {
  if (size < 2 || size > kLargestPaddedSize ||
      !std::has_single_bit(static_cast<std::uint32_t>(size))) {
    return Fail(kStatusSizeRange);
  }
  status.store(kStatusOk, std::memory_order_relaxed);
  return true;
}

// Frequencies of the upper half read as negative ones.
bool DefocusEngine::PrepareFrequencyTable(std::int32_t size) {
  if (frequencyTable != nullptr && frequencyTableSize == size) {
    return true;
  }
  if (frequencyTable != nullptr) {
    lx_free(frequencyTable);
    frequencyTable = nullptr;
  }
  const auto count = static_cast<std::uint32_t>(size);
  auto* table = static_cast<std::uint32_t*>(
      lx_malloc(count * static_cast<std::uint32_t>(sizeof(std::uint32_t))));
  if (table == nullptr) {
    return Fail(kStatusNoMemory);
  }
  BuildFrequencyTable(table, count);
  frequencyTable = reinterpret_cast<std::int32_t*>(table);
  frequencyTableSize = size;
  for (std::int32_t p = 0; p < size; ++p) {
    if (frequencyTable[p] >= size / 2) {
      frequencyTable[p] -= size;
    }
  }
  return true;
}

bool DefocusEngine::ForwardKernel2D(std::int32_t size, const float* input, float (*spectrum)[2]) {
  if (!CheckBlockSize(size) || !PrepareFrequencyTable(size)) {
    return false;
  }
  const std::ptrdiff_t count = std::ptrdiff_t{size} * size;
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    spectrum[i][0] = input[i];
    spectrum[i][1] = 0.0F;
  }
  paddedWidth = size;
  paddedHeight = size;
  passTarget = spectrum;
  // In single precision whatever the mode.
  RunRows(ForwardRowsPass<float>, size);
  RunRows(ForwardColumnsPass<float>, size);
  return GetStatus() == kStatusOk;
}

bool DefocusEngine::InverseKernel2D(std::int32_t size, float (*spectrum)[2], float* output) {
  if (!CheckBlockSize(size)) {
    return false;
  }
  paddedWidth = size;
  paddedHeight = size;
  passTarget = spectrum;
  RunRows(InverseRowsPass<float>, size);
  RunRows(InverseColumnsPass<float>, size);
  if (GetStatus() != kStatusOk) {
    return false;
  }
  const std::ptrdiff_t count = std::ptrdiff_t{size} * size;
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    output[i] = spectrum[i][0];
  }
  return true;
}

bool DefocusEngine::LookUpFrequency(std::int32_t row, std::int32_t column, float* rowFrequency,
                                    float* columnFrequency) const {
  const auto isInside = [this](std::int32_t index) {
    return index >= 0 && index < frequencyTableSize;
  };
  if (frequencyTable == nullptr || !isInside(row) || !isInside(column)) {
    return false;
  }
  *rowFrequency = static_cast<float>(frequencyTable[row]);
  *columnFrequency = static_cast<float>(frequencyTable[column]);
  return true;
}

}  // namespace lx
