// SPDX-License-Identifier: BSD-3-Clause
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <new>

#include "baselib/utils/heap.h"
#include "imagelib/imagelib.h"
#include "imagelib/imagelib/row_dispatch.h"

namespace lx {
namespace {

constexpr std::int32_t kDefaultAlignment = -1;
constexpr bool kImageHeap = true;

// From this many bytes on, a copy is worth spreading by rows.
constexpr std::uint64_t kCopyByRowsBytes = 1048576;

constexpr std::uint32_t ElementBytes(std::uint32_t sampleType) {
  return sampleType == kSampleU8 ? 1 : sampleType == kSampleU16 ? 2 : 4;
}

// The block's size: the product of the sizes in 32-bit arithmetic.
std::int32_t WrappedSize(std::uint32_t width, std::uint32_t height, std::uint32_t channels,
                         std::uint32_t elementBytes) {
  return static_cast<std::int32_t>(width * height * channels * elementBytes);
}

std::uint64_t TrueSize(const ImageRec& image) {
  return std::uint64_t{image.width} * image.height * image.channels * image.elementBytes;
}

struct RowCopy {
  const unsigned char* from;
  unsigned char* to;
  std::size_t rowBytes;
};

void CopyRows(void* user, std::int32_t first, std::int32_t last) {
  const RowCopy& copy = *static_cast<const RowCopy*>(user);
  for (std::int32_t y = first; y <= last; ++y) {
    const std::size_t start = static_cast<std::size_t>(y) * copy.rowBytes;
    std::memcpy(copy.to + start, copy.from + start, copy.rowBytes);
  }
}

}  // namespace

ImageRec* ImageCreate(std::int32_t width, std::int32_t height, std::uint32_t channels,
                      std::uint32_t sampleType, std::int32_t allocate) {
  if (width <= 0 || width >= 0x10000 || height <= 0 || height >= 0x10000 ||
      sampleType > kSampleFloat) {
    return nullptr;
  }
  const std::uint32_t elementBytes = ElementBytes(sampleType);
  const std::int32_t size = WrappedSize(static_cast<std::uint32_t>(width),
                                        static_cast<std::uint32_t>(height), channels, elementBytes);
  if (size < 1) {
    return nullptr;
  }
  void* data = nullptr;
  if (allocate != 0) {
    data = lx_aligned_malloc(static_cast<std::uint32_t>(size), kDefaultAlignment, kImageHeap);
    if (data == nullptr) {
      return nullptr;
    }
  }
  void* block = lx_malloc(sizeof(ImageRec));
  if (block == nullptr) {
    if (data != nullptr) {
      lx_aligned_free(data, kImageHeap);
    }
    return nullptr;
  }
  auto* image = new (block) ImageRec{};
  image->width = static_cast<std::uint16_t>(width);
  image->height = static_cast<std::uint16_t>(height);
  image->channels = static_cast<std::uint16_t>(channels);
  image->sampleType = static_cast<std::uint16_t>(sampleType);
  // A flag whose low 16 bits are 0 is still a flag, or its samples would never be freed.
  const auto flag = static_cast<std::uint16_t>(allocate);
  image->ownsData = allocate != 0 && flag == 0 ? std::uint16_t{1} : flag;
  image->aspect = static_cast<double>(width) / static_cast<double>(height);
  image->rowBytes =
      static_cast<std::int32_t>(static_cast<std::uint32_t>(width) * channels * elementBytes);
  image->pixelBytes = static_cast<std::uint16_t>(channels * elementBytes);
  image->elementBytes = static_cast<std::uint16_t>(elementBytes);
  image->data = data;
  return image;
}

ImageRec* ImageCreateLike(const ImageRec* model) {
  if (model == nullptr) {
    return nullptr;
  }
  return ImageCreate(model->width, model->height, model->channels, model->sampleType, 1);
}

std::int32_t ImageFree(ImageRec* image) {
  if (image == nullptr) {
    return -1;
  }
  if (image->ownsData != 0 && image->data != nullptr) {
    lx_aligned_free(image->data, kImageHeap);
  }
  lx_free(image);
  return 0;
}

bool ImageHasSamples(const ImageRec* image) {
  return image != nullptr && image->data != nullptr &&
         TrueSize(*image) ==
             static_cast<std::uint64_t>(
                 WrappedSize(image->width, image->height, image->channels, image->elementBytes));
}

ImageRec* ImageClone(const ImageRec* image) {
  if (!ImageHasSamples(image)) {
    return nullptr;
  }
  ImageRec* clone = ImageCreateLike(image);
  if (clone == nullptr) {
    return nullptr;
  }
  const std::uint64_t size = TrueSize(*clone);
  if (size >= kCopyByRowsBytes) {
    RowCopy copy{static_cast<const unsigned char*>(image->data),
                 static_cast<unsigned char*>(clone->data),
                 static_cast<std::size_t>(clone->rowBytes)};
    DispatchRows(CopyRows, clone->height, &copy);
  } else {
    std::memcpy(clone->data, image->data, size);
  }
  clone->regionValid = image->regionValid;
  if (image->regionValid != 0) {
    clone->region = image->region;
  }
  return clone;
}

}  // namespace lx
