// SPDX-License-Identifier: BSD-3-Clause
// The separable filter: lines of an image times weights, by real transforms of fftkernels.
//
// The weights are mirrored about the first one, their sum made 1, and lines are multiplied by them.
// The engine calls them a kernel.
// Intended: the mirror image lies one place short of where a circle would have it; a sum of 0 or
// below multiplies the weights by that sum; and since the real transforms take numbers in another
// order than lines have, the result is no plain convolution.
//
// Statuses are those of the engine; kRefused stands for a refusal that touches none.
#pragma once

#include <cstdint>

#include "fftlib/core/grid.h"
#include "fftlib/core/rows.h"
#include "fftlib/lines/filter_weights.h"
#include "imagelib/imagelib.h"

namespace lx {

class SeparableFilter {
 public:
  SeparableFilter() = default;
  ~SeparableFilter();
  SeparableFilter(const SeparableFilter&) = delete;
  SeparableFilter& operator=(const SeparableFilter&) = delete;

  // Takes a copy of the right half of the weights; without one on failure. Refuses a count below 1.
  std::int32_t SetWeights(const float* weights, std::int32_t count);

  // Makes weights, as FilterWeightCount tells, and sets them. Refuses what that counts none for.
  std::int32_t MakeWeights(std::int32_t type, float radius, float parameter);

  // Takes the image to be filtered, for the weights that are set: a line and twice their
  // number may come to 8192 samples. Borrowed; none on failure.
  // Intended: every call makes a clone to work in, and loses that of the call before.
  std::int32_t Prepare(const ImageRec* image);

  // Filters the channels of that image. Whole numbers are cut, not rounded, and saturate.
  //   dest         of the image's size and sample type; may be the image itself
  //   channelMask  bit n selects channel n
  //   direction    bit 0 along rows, bit 1 along columns; none of them does nothing
  std::int32_t Filter(ImageRec* dest, std::uint32_t channelMask, std::uint32_t direction,
                      std::int32_t edgeMode, Rows* rows);

  // For tests.
  const float* Weights() const { return weights_.get(); }
  std::int32_t WeightCount() const { return weightCount_; }
  const ImageRec* Source() const { return source_; }
  ImageRec* Work() const { return work_; }
  Size ImageSize() const { return size_; }
  Size PaddedSize() const { return padded_; }

 private:
  Floats weights_;
  std::int32_t weightCount_ = -1;
  const ImageRec* source_ = nullptr;
  ImageRec* work_ = nullptr;  // owned; between rows and columns
  Size size_;
  Size padded_{0, 0};
};

}  // namespace lx
