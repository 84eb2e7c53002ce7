// SPDX-License-Identifier: BSD-3-Clause
// Small frames and masks for the engine's kernel modes.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <cstdint>
#include <random>
#include <string>
#include <vector>

#include "fftlib/fftlib.h"
#include "tests/support/images.h"

namespace lx_test {

// A frame that pads to a grid of 32 x 16, with at least four pixels of margin everywhere.
inline constexpr int kFrameWidth = 18;
inline constexpr int kFrameHeight = 8;
inline constexpr int kFrameMargin = 4;
inline constexpr int kGridWidth = 32;
inline constexpr int kGridHeight = 16;
inline constexpr int kPixels = kFrameWidth * kFrameHeight;

inline std::string ModeName(const testing::TestParamInfo<std::int32_t>& info) {
  switch (info.param) {
    case lx::kModeKernelF32:
      return "Single";
    case lx::kModeKernelF64:
      return "Double";
    default:
      return "Library";
  }
}

// A spot without symmetry of up to largest, which reaches two pixels from the frame's middle.
inline std::vector<std::uint8_t> SpotMask(std::uint32_t seed, unsigned largest = 255) {
  std::mt19937 random(seed);
  std::vector<std::uint8_t> mask(kPixels, 0);
  for (int y = kFrameHeight / 2 - 2; y <= kFrameHeight / 2 + 2; ++y) {
    for (int x = kFrameWidth / 2 - 2; x <= kFrameWidth / 2 + 2; ++x) {
      mask[y * kFrameWidth + x] = static_cast<std::uint8_t>(random() % (largest + 1));
    }
  }
  return mask;
}

inline bool LoadMask(lx::DefocusEngine* engine, const std::vector<std::uint8_t>& mask,
                     int width = kFrameWidth, int height = kFrameHeight,
                     int margin = kFrameMargin) {
  const Image image = MakeImage(width, height, 1, lx::kSampleU8);
  std::copy(mask.begin(), mask.end(), Samples<std::uint8_t>(image));
  return engine->LoadPsf(image.get(), margin);
}

// A mask of one pixel at the middle, width / 2 and height / 2.
inline bool LoadImpulse(lx::DefocusEngine* engine, int width = kFrameWidth,
                        int height = kFrameHeight, int margin = kFrameMargin) {
  std::vector<std::uint8_t> mask(static_cast<std::size_t>(width) * height, 0);
  mask[static_cast<std::size_t>(height / 2) * width + width / 2] = 255;
  return LoadMask(engine, mask, width, height, margin);
}

// What a byte of a mask becomes: 1 / 255 as a 32-bit number holds it.
inline std::vector<double> MaskValues(const std::vector<std::uint8_t>& mask) {
  std::vector<double> values;
  for (const std::uint8_t byte : mask) {
    values.push_back(byte * 0.003921568859368563);
  }
  return values;
}

// The sample at a place, whatever its integer type.
inline double SampleAt(const Image& image, std::size_t i) {
  switch (image->sampleType) {
    case lx::kSampleU8:
      return Samples<std::uint8_t>(image)[i];
    case lx::kSampleU16:
      return Samples<std::uint16_t>(image)[i];
    case lx::kSampleU32:
      return Samples<std::uint32_t>(image)[i];
    default:
      return Samples<float>(image)[i];
  }
}

inline void SetSample(const Image& image, std::size_t i, double value) {
  switch (image->sampleType) {
    case lx::kSampleU8:
      Samples<std::uint8_t>(image)[i] = static_cast<std::uint8_t>(value);
      break;
    case lx::kSampleU16:
      Samples<std::uint16_t>(image)[i] = static_cast<std::uint16_t>(value);
      break;
    case lx::kSampleU32:
      Samples<std::uint32_t>(image)[i] = static_cast<std::uint32_t>(value);
      break;
    default:
      Samples<float>(image)[i] = static_cast<float>(value);
  }
}

inline double LargestSample(std::uint32_t sampleType) {
  constexpr double kLargest[] = {255.0, 65535.0, 4294967295.0, 1.0};
  return kLargest[sampleType];
}

// Noise over the part of the sample type's range from low to high, whole numbers but for floats.
inline Image NoiseImage(int width, int height, std::uint32_t channels, std::uint32_t sampleType,
                        std::uint32_t seed, double low = 0.0, double high = 1.0) {
  Image image = MakeImage(width, height, channels, sampleType);
  std::mt19937 random(seed);
  for (std::size_t i = 0; i < SampleCount(image); ++i) {
    const double part = low + (high - low) * (random() / 4294967295.0);
    SetSample(image, i, part * LargestSample(sampleType));
  }
  return image;
}

inline Image NoiseFrame(std::uint32_t sampleType, std::uint32_t seed, double low = 0.0,
                        double high = 1.0, std::uint32_t channels = 4) {
  return NoiseImage(kFrameWidth, kFrameHeight, channels, sampleType, seed, low, high);
}

inline bool SameSamples(const Image& a, const Image& b) {
  const auto* first = Samples<std::uint8_t>(a);
  return std::equal(first, first + SampleCount(a) * a->elementBytes, Samples<std::uint8_t>(b));
}

}  // namespace lx_test
