// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/lines/block_transforms.h"

#include <bit>
#include <cstddef>
#include <cstdint>

#include "baselib/utils/heap.h"
#include "fftkernels/fftkernels.h"
#include "fftlib/lines/complex_grid.h"

namespace lx {
namespace {

ComplexGrid<float> BlockGrid(std::int32_t size, float (*spectrum)[2]) {
  static_assert(sizeof(ComplexSample<float>) == sizeof *spectrum);
  return {reinterpret_cast<ComplexSample<float>*>(spectrum), {size, size}};
}

}  // namespace

bool IsBlockSize(std::int32_t size) {
  return IsGridSide(size, kLargestPaddedSize) &&
         std::has_single_bit(static_cast<std::uint32_t>(size));
}

BlockTransforms::~BlockTransforms() { FreeTable(); }

void BlockTransforms::FreeTable() {
  if (table_ != nullptr) {
    lx_free(table_);
    table_ = nullptr;
  }
}

// Frequencies of the upper half read as negative ones.
std::int32_t BlockTransforms::PrepareTable(std::int32_t size) {
  if (table_ != nullptr && tableSize_ == size) {
    return kStatusOk;
  }
  FreeTable();
  const auto count = static_cast<std::uint32_t>(size);
  auto* table = static_cast<std::uint32_t*>(
      lx_malloc(count * static_cast<std::uint32_t>(sizeof(std::uint32_t))));
  if (table == nullptr) {
    return kStatusNoMemory;
  }
  BuildFrequencyTable(table, count);
  table_ = reinterpret_cast<std::int32_t*>(table);
  tableSize_ = size;
  for (std::int32_t p = 0; p < size; ++p) {
    if (table_[p] >= size / 2) {
      table_[p] -= size;
    }
  }
  return kStatusOk;
}

std::int32_t BlockTransforms::Forward(std::int32_t size, const float* input, float (*spectrum)[2],
                                      Rows* rows) {
  const std::ptrdiff_t count = std::ptrdiff_t{size} * size;
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    spectrum[i][0] = input[i];
    spectrum[i][1] = 0.0F;
  }
  RunLines<float>(BlockGrid(size, spectrum), &LineTransforms<float>::forward, rows);
  return rows->Status();
}

std::int32_t BlockTransforms::Inverse(std::int32_t size, float (*spectrum)[2], float* output,
                                      Rows* rows) {
  RunLines<float>(BlockGrid(size, spectrum), &LineTransforms<float>::inverse, rows);
  if (rows->Status() != kStatusOk) {
    return rows->Status();
  }
  const std::ptrdiff_t count = std::ptrdiff_t{size} * size;
  for (std::ptrdiff_t i = 0; i < count; ++i) {
    output[i] = spectrum[i][0];
  }
  return kStatusOk;
}

bool BlockTransforms::LookUp(std::int32_t row, std::int32_t column, float* rowFrequency,
                             float* columnFrequency) const {
  const auto isInside = [this](std::int32_t index) { return index >= 0 && index < tableSize_; };
  if (table_ == nullptr || !isInside(row) || !isInside(column)) {
    return false;
  }
  *rowFrequency = static_cast<float>(table_[row]);
  *columnFrequency = static_cast<float>(table_[column]);
  return true;
}

}  // namespace lx
