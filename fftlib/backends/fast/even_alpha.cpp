// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/even_alpha.h"

#include <cstddef>

#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

// Bits in which alpha differs from the first pixel's.
template <class Sample>
std::uint32_t Differences(const Sample* pixels, std::ptrdiff_t count, std::int32_t channels,
                          Sample alpha) {
  std::uint32_t bits = 0;
  if (channels == 4) {
    for (std::ptrdiff_t x = 0; x < count; ++x) {
      bits |= static_cast<std::uint32_t>(pixels[4 * x + 3] ^ alpha);
    }
    return bits;
  }
  for (std::ptrdiff_t x = 0; x < count; ++x) {
    bits |= static_cast<std::uint32_t>(pixels[x * channels + 3] ^ alpha);
  }
  return bits;
}

template <class Sample>
void Check(const EvenAlphaPass& pass, std::int32_t first, std::int32_t last) {
  const ImageRec& image = *pass.source;
  const Sample alpha = SampleRow<Sample>(image, 0)[3];
  for (std::int32_t y = first; y <= last && pass.isEven->load(std::memory_order_relaxed); ++y) {
    if (Differences(SampleRow<Sample>(image, y), image.width, image.channels, alpha) != 0) {
      pass.isEven->store(false, std::memory_order_relaxed);
    }
  }
}

}  // namespace

// Floats by their bits: what is not a number is then like itself.
void EvenAlphaPass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  switch (source->sampleType) {
    case kSampleU8:
      Check<std::uint8_t>(*this, first, last);
      break;
    case kSampleU16:
      Check<std::uint16_t>(*this, first, last);
      break;
    default:
      Check<std::uint32_t>(*this, first, last);
      break;
  }
}

}  // namespace lx
