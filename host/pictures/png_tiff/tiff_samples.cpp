// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_samples.h"

#include <algorithm>
#include <cmath>
#include <cstring>
#include <limits>
#include <utility>

namespace glimmerhost {
namespace {

// Blocks are bytes, and what lies in them need not be aligned once a row is odd.
template <class Sample>
Sample Load(const std::uint8_t* from, std::size_t i) {
  Sample sample;
  std::memcpy(&sample, from + i * sizeof sample, sizeof sample);
  return sample;
}

float FromHalf(std::uint16_t half) {
  const int exponent = half >> 10U & 0x1FU;
  const int fraction = half & 0x3FFU;
  const float size = exponent == 0 ? std::ldexp(static_cast<float>(fraction), -24)
                     : exponent < 31
                         ? std::ldexp(static_cast<float>(fraction + 1024), exponent - 25)
                     : fraction == 0 ? std::numeric_limits<float>::infinity()
                                     : std::numeric_limits<float>::quiet_NaN();
  return (half & 0x8000U) != 0 ? -size : size;
}

float FloatAt(const std::uint8_t* from, std::size_t i, int bits) {
  switch (bits) {
    case 16:
      return FromHalf(Load<std::uint16_t>(from, i));
    case 32:
      return Load<float>(from, i);
    default: {
      // What a float cannot hold lies outside every range.
      constexpr double kMost = std::numeric_limits<float>::max();
      const double value = Load<double>(from, i);
      return static_cast<float>(std::isinf(value) ? value : std::clamp(value, -kMost, kMost));
    }
  }
}

std::uint16_t WordAt(const std::uint8_t* from, std::size_t i, int bits) {
  switch (bits) {
    case 8:
      return from[i];
    case 16:
      return Load<std::uint16_t>(from, i);
    case 32:
      // 2^32 - 1 is 65537 times 65535.
      return static_cast<std::uint16_t>((std::uint64_t{Load<std::uint32_t>(from, i)} + 32768U) /
                                        65537U);
    default: {
      const std::size_t bit = i * static_cast<std::size_t>(bits);
      const auto low = static_cast<unsigned>(8U - static_cast<unsigned>(bits) - bit % 8U);
      return static_cast<std::uint16_t>(from[bit / 8] >> low & ((1U << bits) - 1U));
    }
  }
}

template <class Sample>
std::uint16_t Widened(const std::uint8_t* from, std::size_t i) {
  constexpr unsigned kScale = sizeof(Sample) == 1 ? 257 : 1;
  return static_cast<std::uint16_t>(Load<Sample>(from, i) * kScale);
}

// The usual kinds with their numbers known, which makes a pixel a few moves.
template <class Sample, int kChannels>
void UnpackUsual(const std::uint8_t* from, std::size_t count, std::uint16_t* to) {
  constexpr std::size_t kStep = kChannels;
  for (std::size_t i = 0; i < count * kStep; i += kStep, to += 4) {
    to[0] = Widened<Sample>(from, i);
    to[1] = kChannels < 3 ? to[0] : Widened<Sample>(from, i + 1);
    to[2] = kChannels < 3 ? to[0] : Widened<Sample>(from, i + 2);
    to[3] = kChannels % 2 == 0 ? Widened<Sample>(from, i + kStep - 1) : std::uint16_t{65535};
  }
}

template <class Sample>
void Unpack(const std::uint8_t* from, std::size_t count, int channels, int alpha,
            std::uint16_t* to) {
  if (channels == 1 && alpha < 0) {
    return UnpackUsual<Sample, 1>(from, count, to);
  }
  if (channels == 3 && alpha < 0) {
    return UnpackUsual<Sample, 3>(from, count, to);
  }
  if (channels == 4 && alpha == 3) {
    return UnpackUsual<Sample, 4>(from, count, to);
  }
  const auto step = static_cast<std::size_t>(channels);
  for (std::size_t i = 0; i < count * step; i += step, to += 4) {
    to[0] = Widened<Sample>(from, i);
    to[1] = channels < 3 ? to[0] : Widened<Sample>(from, i + 1);
    to[2] = channels < 3 ? to[0] : Widened<Sample>(from, i + 2);
    to[3] = alpha < 0 ? std::uint16_t{65535}
                      : Widened<Sample>(from, i + static_cast<std::size_t>(alpha));
  }
}

}  // namespace

void UnpackPixels(const std::uint8_t* from, std::size_t count, int bits, int channels, int alpha,
                  std::uint16_t* to) {
  if (bits == 8) {
    Unpack<std::uint8_t>(from, count, channels, alpha, to);
  } else {
    Unpack<std::uint16_t>(from, count, channels, alpha, to);
  }
}

void SwapWords(std::uint8_t* words, std::size_t count) {
  for (std::size_t i = 0; i < count; ++i) {
    std::swap(words[2 * i], words[2 * i + 1]);
  }
}

void UnpackWords(const std::uint8_t* from, std::size_t count, int bits, std::size_t stride,
                 std::uint16_t* to) {
  for (std::size_t i = 0; i < count; ++i) {
    to[i * stride] = WordAt(from, i, bits);
  }
}

void UnpackFloats(const std::uint8_t* from, std::size_t count, int bits, std::size_t stride,
                  float* to) {
  for (std::size_t i = 0; i < count; ++i) {
    to[i * stride] = FloatAt(from, i, bits);
  }
}

std::uint16_t WordScale(int bits) {
  return bits < 16 ? static_cast<std::uint16_t>(65535 / ((1 << bits) - 1)) : std::uint16_t{1};
}

}  // namespace glimmerhost
