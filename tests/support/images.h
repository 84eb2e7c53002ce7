// SPDX-License-Identifier: BSD-3-Clause
// Small images for tests.
#pragma once

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <random>

#include "imagelib/imagelib.h"

namespace lx_test {

struct FreeImage {
  void operator()(lx::ImageRec* image) const { lx::ImageFree(image); }
};
using Image = std::unique_ptr<lx::ImageRec, FreeImage>;

inline Image MakeImage(std::int32_t width, std::int32_t height, std::uint32_t channels,
                       std::uint32_t sampleType) {
  return Image(lx::ImageCreate(width, height, channels, sampleType, 1));
}

template <class Sample>
Sample* Samples(const Image& image) {
  return static_cast<Sample*>(image->data);
}

inline std::size_t SampleCount(const Image& image) {
  return std::size_t{image->width} * image->height * image->channels;
}

template <class Sample>
void Fill(const Image& image, Sample value) {
  std::fill_n(Samples<Sample>(image), SampleCount(image), value);
}

// 16-bit samples from low to high, both included, always the same for a seed.
inline void FillNoise(const Image& image, std::uint32_t seed, int low = 0, int high = 65535) {
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < SampleCount(image); ++i) {
    Samples<std::uint16_t>(image)[i] = static_cast<std::uint16_t>(
        low + static_cast<int>(random() % static_cast<unsigned>(high - low + 1)));
  }
}

}  // namespace lx_test
