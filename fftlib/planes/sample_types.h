// SPDX-License-Identifier: BSD-3-Clause
// What the passes know of each sample type.
#pragma once

#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "baselib/utils/convert.h"
#include "imagelib/imagelib.h"

namespace lx {

// toUnit scales a stored sample to 0..1, full scales back; limit is the largest raw
// number that a run without scaling stores.
template <class Sample>
struct SampleScale;

template <>
struct SampleScale<std::uint8_t> {
  static constexpr double toUnit = 0.00392156862745098;
  static constexpr double full = 255.0;
  static constexpr double limit = 255.0;
};

template <>
struct SampleScale<std::uint16_t> {
  static constexpr double toUnit = 1.5259021896696422e-05;
  static constexpr double full = 65535.0;
  static constexpr double limit = 65535.0;
};

template <>
struct SampleScale<std::uint32_t> {
  static constexpr double toUnit = 2.3283064365386963e-10;
  static constexpr double full = 4294967295.0;
  static constexpr double limit = 4294967296.0;
};

template <class Sample>
const Sample* SampleRow(const ImageRec& image, std::int32_t y) {
  return static_cast<const Sample*>(image.data) +
         static_cast<std::ptrdiff_t>(y) * image.width * image.channels;
}

template <class Sample>
Sample* SampleRow(ImageRec* image, std::int32_t y) {
  return static_cast<Sample*>(image->data) +
         static_cast<std::ptrdiff_t>(y) * image->width * image->channels;
}

// A number as a run without scaling stores it: clamped and truncated, as float unchanged.
template <class Sample>
Sample StoreRaw(double value) {
  if constexpr (std::is_same_v<Sample, float>) {
    return NarrowToFloat(value);
  } else {
    // The largest 32-bit number is one below the limit, and the limit itself becomes 0.
    return static_cast<Sample>(TruncateToUnsigned(value, SampleScale<Sample>::limit));
  }
}

}  // namespace lx
