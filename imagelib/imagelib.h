// SPDX-License-Identifier: BSD-3-Clause
// ImageRec: the plain record of one image, and the operations on it.
//
//   data -> row 0:  s0 s1 .. s(channels-1) | s0 s1 ..      width pixels, no gap
//           row 1:  ...                                    height rows, no gap
//
// All failures are results: null, false or -1. There are no messages and no
// exceptions, and a failed operation leaves its images as they were.
// An image belongs to whoever created it, and goes back with ImageFree. Different
// images may be worked on by different threads.
#pragma once

#include <cstdint>

namespace lx {

// Sample types of an ImageRec.
inline constexpr std::uint32_t kSampleU8 = 0;     // 0 to 255
inline constexpr std::uint32_t kSampleU16 = 1;    // 0 to 65535
inline constexpr std::uint32_t kSampleU32 = 2;    // 0 to 4294967295
inline constexpr std::uint32_t kSampleFloat = 3;  // 32-bit float

struct ImageRegion {
  std::int32_t left;
  std::int32_t top;
  std::int32_t right;
  std::int32_t bottom;
};

struct ImageRec {
  std::uint16_t width;
  std::uint16_t height;
  std::uint16_t channels;
  std::uint16_t sampleType;
  std::uint16_t ownsData;  // whether ImageFree frees the samples
  ImageRegion region;
  std::int32_t regionValid;  // non-zero where region holds a value
  double aspect;             // width / height
  std::int32_t rowBytes;
  std::uint16_t pixelBytes;
  std::uint16_t elementBytes;
  void* data;  // page-aligned samples; null if created without
};

// Makes an image with undefined samples, or a record without samples if allocate is 0.
//   width, height  1 to 65535
//   channels       at least 1
//   sampleType     0 to 3
// Null for sizes out of range, for a product of all sizes that is below 1 as a 32-bit
// signed number, and where memory has run out.
// Intended: a product that wraps to a small positive number gives a record whose
// samples are that small; operations on samples refuse such a record.
ImageRec* ImageCreate(std::int32_t width, std::int32_t height, std::uint32_t channels,
                      std::uint32_t sampleType, std::int32_t allocate);

// An image of the same size and type, with samples of its own. Null for null.
ImageRec* ImageCreateLike(const ImageRec* model);

// 0, or -1 for null.
std::int32_t ImageFree(ImageRec* image);

// For a std::unique_ptr that owns an image.
struct ImageDeleter {
  void operator()(ImageRec* image) const { ImageFree(image); }
};

// A copy of an image: samples, and the region where it is valid. Null for null, for an
// image without samples, and on failure.
ImageRec* ImageClone(const ImageRec* image);

// Blurs in place with a repeated box, which stands in for a Gaussian. The cost does not
// depend on the radii.
//   radiusX, radiusY  pixels; at or below 0, or not a number: that axis is left alone;
//                     above half the image's side: as half the side
//   channelMask       bit c modulo 32 selects channel c
// False for null and for an image without samples. A pass without memory leaves the
// image as it is, and the result is still true.
bool ImageBlur(ImageRec* image, double radiusX, double radiusY, std::int32_t channelMask);

// Whether the samples are there and the record's sizes agree with their block.
bool ImageHasSamples(const ImageRec* image);

// The slot by which row work of this library can be spread over threads. The function
// is called with first and last row, inclusive, and user; parallelFor must cover the
// rows 0 to count - 1 exactly once and return when all are done. While function is
// null, rows run on the calling thread. Set it while no image is being worked on.
using ImageRowFunction = void (*)(void* user, std::int32_t first, std::int32_t last);
struct ImageRowDispatcher {
  void (*parallelFor)(void* context, ImageRowFunction function, std::int32_t count, void* user);
  void* context;
};
ImageRowDispatcher& GetImageRowDispatcher();

}  // namespace lx
