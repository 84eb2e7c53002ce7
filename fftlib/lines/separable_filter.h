// The separable filter: lines of an image through a kernel, by real transforms of fftkernels.
//
// A kernel is mirrored about its first value, its sum made 1, and lines are multiplied with it.
// Intended: the mirror image lies one place short of where a circle would have it; a sum of 0 or
// below multiplies the kernel by itself; and since the real transforms take numbers in another
// order than lines have, the result is no plain convolution.
//
// Statuses are those of the engine; kRefused stands for a refusal that touches none.
#pragma once

#include <cstdint>

#include "fftlib/core/grid.h"
#include "fftlib/core/rows.h"
#include "fftlib/lines/separable_kernels.h"
#include "imagelib/imagelib.h"

namespace lx {

class SeparableFilter {
 public:
  SeparableFilter() = default;
  ~SeparableFilter();
  SeparableFilter(const SeparableFilter&) = delete;
  SeparableFilter& operator=(const SeparableFilter&) = delete;

  // Takes a copy of the right half of a kernel; without one on failure. Refuses a count below 1.
  std::int32_t SetKernel(const float* kernel, std::int32_t count);

  // Makes a kernel, as FilterKernelLength tells, and sets it. Refuses what that knows no length of.
  std::int32_t MakeKernel(std::int32_t type, float radius, float parameter);

  // Takes the image to be filtered, for the kernel that is set: a line and twice the kernel's
  // length may come to 8192 samples. Borrowed; none on failure.
  // Intended: every call makes a clone to work in, and loses that of the call before.
  std::int32_t Prepare(const ImageRec* image);

  // Filters the channels of that image. Whole numbers are cut, not rounded, and saturate.
  //   dest         of the image's size and sample type; may be the image itself
  //   channelMask  bit n selects channel n
  //   direction    bit 0 along rows, bit 1 along columns; none of them does nothing
  std::int32_t Filter(ImageRec* dest, std::uint32_t channelMask, std::uint32_t direction,
                      std::int32_t edgeMode, Rows* rows);

  // For tests.
  const float* Kernel() const { return kernel_.get(); }
  std::int32_t KernelLength() const { return kernelLength_; }
  const ImageRec* Source() const { return source_; }
  ImageRec* Work() const { return work_; }
  Size ImageSize() const { return size_; }
  Size PaddedSize() const { return padded_; }

 private:
  Floats kernel_;
  std::int32_t kernelLength_ = -1;
  const ImageRec* source_ = nullptr;
  ImageRec* work_ = nullptr;  // owned; between rows and columns
  Size size_;
  Size padded_{0, 0};
};

}  // namespace lx
