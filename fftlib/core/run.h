// SPDX-License-Identifier: BSD-3-Clause
// What a run is asked to do.
#pragma once

#include <cstdint>

#include "fftlib/core/grid.h"
#include "imagelib/imagelib.h"

namespace lx {

// The planes of a picture, as bits of a channel mask.
inline constexpr std::uint32_t kBitLuma = 1;
inline constexpr std::uint32_t kBitCr = 2;
inline constexpr std::uint32_t kBitCb = 4;
inline constexpr std::uint32_t kBitAlpha = 8;
inline constexpr std::uint32_t kColourBits = kBitLuma | kBitCr | kBitCb;

inline constexpr std::int32_t kEdgeZero = 1;       // pads with zero
inline constexpr std::int32_t kEdgeReplicate = 2;  // repeats the frame's edge

// From where to where. The images are borrowed, of one size and sample type, and may be the same.
struct RunImages {
  const ImageRec* source;
  ImageRec* dest;
  GridPlace place;
  std::uint32_t channelMask;  // planes of a picture, or stored channels
};

struct Look {
  float emphasis = 0.0F;       // 0 to 500; up to 1 there is none
  bool emphasisAlpha = false;  // whether alpha is treated like luma, by emphasis and by gamma
  std::int32_t edgeMode = kEdgeReplicate;
};

// Of stored channels alone. Values of 0..1 are raised to the gamma on their way in; on their way
// out to its inverse, then offset and gain.
struct Gamma {
  float gamma = 1.0F;
  bool active = false;
  float gain = 1.0F;
  float offset = 0.0F;
};

// Bit n of a channel mask, for stored channels, which may be more than the mask has bits.
constexpr bool HasChannel(std::uint32_t channelMask, std::int32_t channel) {
  return (channelMask & (1U << (static_cast<std::uint32_t>(channel) & 31U))) != 0;
}

}  // namespace lx
