// SPDX-License-Identifier: BSD-3-Clause
#include "library/image_conversion.h"

#include <cstddef>
#include <cstdint>

namespace lx {
namespace {

constexpr std::uint16_t kOpaque = 32767;
constexpr float kUnitPerStep = 1.0F / 32767.0F;

bool SameSize(const ImageRec& record, const LXImage& image) {
  return record.width == image.width && record.height == image.height;
}

std::ptrdiff_t SampleCount(const LXImage& image) {
  return static_cast<std::ptrdiff_t>(image.width) * image.height * 4;
}

std::uint16_t To15Bits(std::uint16_t sample) { return static_cast<std::uint16_t>(sample >> 1U); }

// Fills 15 bits from 8, so that 0 stays 0 and 255 becomes full.
std::uint16_t To15Bits(std::uint8_t sample) {
  const unsigned s = sample;
  return static_cast<std::uint16_t>((s << 7U) | (s >> 1U));
}

template <class Sample>
void StoreSamples(const ImageRec& source, LXImage* destination) {
  const auto* from = static_cast<const Sample*>(source.data);
  std::uint16_t* to = destination->data;
  if (source.channels == 4) {
    const std::ptrdiff_t count = SampleCount(*destination);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
      to[i] = To15Bits(from[i]);
    }
    return;
  }
  const std::ptrdiff_t pixels = SampleCount(*destination) / 4;
  for (std::ptrdiff_t i = 0; i < pixels; ++i, from += 3, to += 4) {
    to[0] = To15Bits(from[0]);
    to[1] = To15Bits(from[1]);
    to[2] = To15Bits(from[2]);
    to[3] = kOpaque;
  }
}

}  // namespace

ImageRec* ImageFromLX(const LXImage* image) {
  if (image == nullptr) {
    return nullptr;
  }
  ImageRec* record = ImageCreate(image->width, image->height, 4, kSampleU16, 1);
  if (record != nullptr && !ImageCopyFromLX(record, image)) {
    ImageFree(record);
    return nullptr;
  }
  return record;
}

bool ImageCopyFromLX(ImageRec* destination, const LXImage* source) {
  if (!ImageHasSamples(destination) || source == nullptr || source->data == nullptr ||
      !SameSize(*destination, *source) || destination->channels != 4) {
    return false;
  }
  const std::ptrdiff_t count = SampleCount(*source);
  const std::uint16_t* from = source->data;
  if (destination->sampleType == kSampleU16) {
    auto* to = static_cast<std::uint16_t*>(destination->data);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
      // The lowest bit stays 0: the way back drops it.
      to[i] = static_cast<std::uint16_t>(from[i] * 2U);
    }
    return true;
  }
  if (destination->sampleType == kSampleFloat) {
    auto* to = static_cast<float*>(destination->data);
    for (std::ptrdiff_t i = 0; i < count; ++i) {
      to[i] = static_cast<float>(from[i]) * kUnitPerStep;
    }
    return true;
  }
  return false;
}

bool ImageToLX(const ImageRec* source, LXImage* destination) {
  if (!ImageHasSamples(source) || destination == nullptr || destination->data == nullptr ||
      !SameSize(*source, *destination) || (source->channels != 3 && source->channels != 4)) {
    return false;
  }
  if (source->sampleType == kSampleU16) {
    StoreSamples<std::uint16_t>(*source, destination);
    return true;
  }
  if (source->sampleType == kSampleU8) {
    StoreSamples<std::uint8_t>(*source, destination);
    return true;
  }
  return false;
}

}  // namespace lx
