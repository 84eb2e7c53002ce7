// SPDX-License-Identifier: BSD-3-Clause
// The operations on lines: the separable filter, and square blocks.
#include <cstdint>

#include "fftlib/fftlib.h"

namespace lx {

bool DefocusEngine::SetSeparableKernel(const float* weights, std::int32_t count) {
  return Finish(separable_.SetWeights(weights, count));
}

bool DefocusEngine::MakeFilterKernel(std::int32_t type, float radius, float parameter,
                                     float /*spare*/) {
  return Finish(separable_.MakeWeights(type, radius, parameter));
}

bool DefocusEngine::PrepareSeparable(const ImageRec* image) {
  return Finish(separable_.Prepare(image));
}

bool DefocusEngine::FilterSeparable(ImageRec* dest, std::uint32_t channelMask,
                                    std::uint32_t direction) {
  return Finish(separable_.Filter(dest, channelMask, direction, look_.edgeMode, &rows_));
}

bool DefocusEngine::CheckBlockSize(std::int32_t size) {
  return Finish(IsBlockSize(size) ? kStatusOk : kStatusSizeRange);
}

bool DefocusEngine::ForwardKernel2D(std::int32_t size, const float* input, float (*spectrum)[2]) {
  if (!CheckBlockSize(size)) {
    return false;
  }
  rows_.SetStatus(kStatusOk);
  if (!Finish(blocks_.PrepareTable(size))) {
    return false;
  }
  place_.grid = {size, size};
  return Finish(BlockTransforms::Forward(size, input, spectrum, &rows_));
}

bool DefocusEngine::InverseKernel2D(std::int32_t size, float (*spectrum)[2], float* output) {
  if (!CheckBlockSize(size)) {
    return false;
  }
  rows_.SetStatus(kStatusOk);
  place_.grid = {size, size};
  return Finish(BlockTransforms::Inverse(size, spectrum, output, &rows_));
}

bool DefocusEngine::LookUpFrequency(std::int32_t row, std::int32_t column, float* rowFrequency,
                                    float* columnFrequency) const {
  return blocks_.LookUp(row, column, rowFrequency, columnFrequency);
}

}  // namespace lx
