// The separable filter: lines of an image through a kernel, by real transforms.
//
// A kernel is mirrored about its first value, its sum made 1, and lines are multiplied with it.
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

  // Takes a copy of the right half of a kernel; without one on failure.
  std::int32_t SetKernel(const float* kernel, std::int32_t count);
  std::int32_t MakeKernel(std::int32_t type, float radius, float parameter);

  // Takes the image, borrowed; none on failure.
  std::int32_t Prepare(const ImageRec* image);

  // Filters the image that was taken.
  //   channelMask  bit n selects channel n
  //   direction    bit 0 along rows, bit 1 along columns
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
