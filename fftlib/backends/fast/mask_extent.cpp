// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/mask_extent.h"

#include <algorithm>
#include <cstddef>

#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

template <class Sample>
MaskExtent Find(const ImageRec& mask) {
  MaskExtent found{mask.width, mask.height, -1, -1, false};
  const std::ptrdiff_t step = mask.channels;
  for (std::int32_t y = 0; y < mask.height; ++y) {
    const Sample* row = SampleRow<Sample>(mask, y);
    const auto isSet = [&](std::int32_t x) { return row[x * step] != Sample{0}; };
    std::int32_t first = 0;
    while (first < mask.width && !isSet(first)) {
      ++first;
    }
    if (first == mask.width) {
      continue;
    }
    std::int32_t last = mask.width - 1;
    while (!isSet(last)) {
      --last;
    }
    found = {std::min(found.left, first), std::min(found.top, y), std::max(found.right, last), y,
             false};
  }
  // An empty mask has the pixel in its middle as its extent, so that whoever goes through it finds
  // one.
  if (found.right < 0) {
    const std::int32_t x = std::min(MaskMiddle(mask.width), mask.width - 1);
    const std::int32_t y = std::min(MaskMiddle(mask.height), mask.height - 1);
    return {x, y, x, y, true};
  }
  return found;
}

}  // namespace

MaskExtent FindExtent(const ImageRec& mask) {
  switch (mask.sampleType) {
    case kSampleU8:
      return Find<std::uint8_t>(mask);
    case kSampleU16:
      return Find<std::uint16_t>(mask);
    case kSampleU32:
      return Find<std::uint32_t>(mask);
    default:
      return Find<float>(mask);
  }
}

}  // namespace lx
