// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/planes/channel_rows.h"

#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "baselib/utils/convert.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

constexpr std::int32_t kAlphaChannel = 3;

template <class Sample>
double ToLinear(Sample sample, double gamma) {
  if constexpr (std::is_same_v<Sample, float>) {
    return std::pow(static_cast<double>(sample), gamma);
  } else {
    return std::pow(static_cast<double>(sample) * SampleScale<Sample>::toUnit, gamma);
  }
}

template <class Sample>
Sample StoreGamma(double value, double exponent, const ChannelGamma& gamma) {
  const double shaped = (std::pow(value, exponent) + gamma.offset) * gamma.gain;
  if constexpr (std::is_same_v<Sample, float>) {
    return NarrowToFloat(shaped);
  } else {
    return StoreRaw<Sample>(ClampToUnit(shaped) * SampleScale<Sample>::limit);
  }
}

// Calls function with the first sample of the channel in the piece.
template <class Function>
void OnSamples(const ImageRec& image, std::int32_t channel, RowPiece piece, Function function) {
  const std::ptrdiff_t first =
      (std::ptrdiff_t{piece.y} * image.width + piece.x) * image.channels + channel;
  switch (image.sampleType) {
    case kSampleU8:
      function(static_cast<std::uint8_t*>(image.data) + first);
      break;
    case kSampleU16:
      function(static_cast<std::uint16_t*>(image.data) + first);
      break;
    case kSampleU32:
      function(static_cast<std::uint32_t*>(image.data) + first);
      break;
    default:
      function(static_cast<float*>(image.data) + first);
      break;
  }
}

}  // namespace

ChannelGamma MakeChannelGamma(const Gamma& gamma, bool emphasisAlpha, std::int32_t channel) {
  // Channels count as the bits of a mask do, so channel 35 is alpha too.
  const bool isAlpha = (channel & 31) == kAlphaChannel;
  return {gamma.active && gamma.gamma != 1.0F && (!isAlpha || emphasisAlpha),
          static_cast<double>(gamma.gamma), static_cast<double>(gamma.offset),
          static_cast<double>(gamma.gain)};
}

void FillFromChannel(const ImageRec& source, std::int32_t channel, const ChannelGamma& gamma,
                     RowPiece piece, double* row) {
  OnSamples(source, channel, piece, [&](const auto* sample) {
    for (std::int32_t x = 0; x < piece.width; ++x, sample += source.channels) {
      row[x] = gamma.on ? ToLinear(*sample, gamma.gamma) : static_cast<double>(*sample);
    }
  });
}

void StoreToChannel(const double* row, double scale, std::int32_t channel,
                    const ChannelGamma& gamma, RowPiece piece, ImageRec* dest) {
  const double exponent = 1.0 / gamma.gamma;
  OnSamples(*dest, channel, piece, [&](auto* sample) {
    using Sample = std::remove_pointer_t<decltype(sample)>;
    for (std::int32_t x = 0; x < piece.width; ++x, sample += dest->channels) {
      const double value = scale * row[x];
      *sample = gamma.on ? StoreGamma<Sample>(value, exponent, gamma) : StoreRaw<Sample>(value);
    }
  });
}

}  // namespace lx
