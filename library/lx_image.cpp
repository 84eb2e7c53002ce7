// SPDX-License-Identifier: BSD-3-Clause
#include "library/lx_image.h"

#include <algorithm>
#include <cstddef>
#include <new>

#include "baselib/threads/parallel_rows.h"
#include "baselib/utils/heap.h"

namespace lx {
namespace {

constexpr std::uint64_t kBytesPerPixel = 8;
constexpr std::uint64_t kLargestBlock = 0x7fffffff;
constexpr std::ptrdiff_t kSamplesPerPixel = 4;

// Bytes of the samples. False for sides that no image can have.
bool SampleBytes(std::int32_t width, std::int32_t height, std::uint32_t* bytes) {
  if (width < 0 || height < 0) {
    return false;
  }
  // Both factors are below 2^31 and the product of the sides below 2^62.
  const std::uint64_t pixels =
      static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
  if (pixels > kLargestBlock / kBytesPerPixel) {
    return false;
  }
  *bytes = static_cast<std::uint32_t>(pixels * kBytesPerPixel);
  return true;
}

}  // namespace

LXImage* LXImage::Make(std::int32_t width, std::int32_t height) {
  auto* image = new (std::nothrow) LXImage(width, height, 0.0F, nullptr, 0);
  if (image != nullptr && (image->data == nullptr || image->rows == nullptr)) {
    delete image;
    return nullptr;
  }
  return image;
}

LXImage::LXImage(std::int32_t imageWidth, std::int32_t imageHeight, float /*ignored*/,
                 std::uint16_t* samples, std::int32_t imageTag)
    : data(samples),
      width(imageWidth),
      height(imageHeight),
      scale(720.0F / static_cast<float>(imageWidth)),
      tag(imageTag) {
  std::uint32_t bytes = 0;
  if (!SampleBytes(width, height, &bytes)) {
    data = nullptr;
    return;
  }
  // An empty image has blocks too, so that null keeps its one meaning.
  if (samples == nullptr) {
    data = static_cast<std::uint16_t*>(lx_image_malloc(std::max(bytes, 1U)));
    ownsData = 1;
  }
  if (data == nullptr) {
    return;
  }
  const auto tableBytes =
      static_cast<std::uint64_t>(height) * static_cast<std::uint64_t>(sizeof(std::uint16_t*));
  if (tableBytes > kLargestBlock) {
    return;
  }
  rows =
      static_cast<std::uint16_t**>(lx_malloc(std::max(static_cast<std::uint32_t>(tableBytes), 1U)));
  if (rows == nullptr) {
    return;
  }
  for (std::int32_t y = 0; y < height; ++y) {
    rows[y] = data + static_cast<std::ptrdiff_t>(y) * width * kSamplesPerPixel;
  }
}

LXImage::~LXImage() {
  if (ownsData != 0 && data != nullptr) {
    lx_image_free(data);
  }
  if (rows != nullptr) {
    lx_free(rows);
  }
  if (extra != nullptr) {
    lx_free(extra);
  }
}

void LXImage::CopyAlphaFrom(LXImage* source) {
  alphaSource = source;
  mp_parallel_rows(*this, &LXImage::CopyAlphaRows, std::min(height, source->height));
}

void LXImage::CopyAlphaRows(std::int32_t first, std::int32_t last) {
  const std::ptrdiff_t samples = std::min(width, alphaSource->width) * kSamplesPerPixel;
  for (std::int32_t y = first; y <= last; ++y) {
    const std::uint16_t* from = alphaSource->rows[y];
    std::uint16_t* to = rows[y];
    for (std::ptrdiff_t alpha = 3; alpha < samples; alpha += kSamplesPerPixel) {
      to[alpha] = from[alpha];
    }
  }
}

}  // namespace lx
