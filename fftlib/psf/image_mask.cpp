// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/psf/image_mask.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>

#include "baselib/utils/convert.h"

namespace lx {
namespace {

// The first sample of a pixel as 8 bits: the top byte of wider samples.
std::uint32_t FirstSample8(const ImageRec& image, std::int32_t x, std::int32_t y) {
  const auto* pixel = static_cast<const unsigned char*>(image.data) +
                      static_cast<std::ptrdiff_t>(y) * image.rowBytes +
                      static_cast<std::ptrdiff_t>(x) * image.pixelBytes;
  if (image.sampleType == kSampleU16) {
    std::uint16_t sample;
    std::memcpy(&sample, pixel, sizeof sample);
    return sample >> 8U;
  }
  if (image.sampleType == kSampleU32) {
    std::uint32_t sample;
    std::memcpy(&sample, pixel, sizeof sample);
    return sample >> 24U;
  }
  return *pixel;
}

// 1 up to the inner radius, then falling to 0 over the falloff.
double DiscWeight(double distance, float innerRadius, float falloff) {
  const double f = (distance - innerRadius) / falloff;
  return 1.0 - (f < 0.0 ? 0.0 : f > 1.0 ? 1.0 : f);
}

void CutDisc(const ImageRec& image, const MaskDisc& disc, std::uint8_t* mask) {
  const std::int32_t width = image.width;
  const std::int32_t height = image.height;
  for (std::int32_t y = 0; y < height; ++y) {
    // Wide numbers, since the centre may lie anywhere.
    const std::int64_t dy = std::int64_t{y} - disc.centreY;
    const std::int64_t targetY = dy + height / 2;
    if (targetY < 0 || targetY >= height) {
      continue;
    }
    for (std::int32_t x = 0; x < width; ++x) {
      const std::int64_t dx = std::int64_t{x} - disc.centreX;
      const std::int64_t targetX = dx + width / 2;
      if (targetX < 0 || targetX >= width) {
        continue;
      }
      const double distance = std::sqrt(static_cast<double>(dx) * static_cast<double>(dx) +
                                        static_cast<double>(dy) * static_cast<double>(dy));
      const double value =
          FirstSample8(image, x, y) * DiscWeight(distance, disc.innerRadius, disc.falloff);
      mask[targetY * width + targetX] = static_cast<std::uint8_t>(TruncateToUnsigned(value, 255.0));
    }
  }
}

}  // namespace

void CutImageMask(const ImageRec& image, const MaskDisc& disc, ImageRec* mask) {
  auto* pixels = static_cast<std::uint8_t*>(mask->data);
  CutDisc(image, disc, pixels);
  const std::ptrdiff_t count = static_cast<std::ptrdiff_t>(mask->width) * mask->height;
  const auto [smallest, largest] = std::minmax_element(pixels, pixels + count);
  if (*smallest == *largest) {
    // Nothing to see in the disc: an impulse, rather than a division by a sum of zero.
    std::fill(pixels, pixels + count, std::uint8_t{0});
    pixels[static_cast<std::ptrdiff_t>(mask->height / 2) * mask->width + mask->width / 2] = 255;
  }
}

}  // namespace lx
