// SPDX-License-Identifier: BSD-3-Clause
// Frames for the back-end fast: random ones, each from a seed, and what an engine makes of them.
#pragma once

#include <gtest/gtest.h>

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <memory>
#include <ostream>
#include <random>
#include <string>
#include <utility>
#include <vector>

#include "fftlib/backends/fast/fast_backend.h"
#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace lx_test {

inline std::unique_ptr<lx::DefocusEngine> MakeFastEngine() {
  return std::make_unique<lx::DefocusEngine>(std::make_unique<lx::FastBackend>());
}

struct FrameCase {
  std::uint32_t seed;  // of its samples
  int width;
  int height;
  int shape;  // as BuildShapePsf has it; 0 is the disc of a picture
  float radiusX;
  float radiusY;
  float rotation;
  int sides;
  float softness;
  float aspectX;
  float aspectY;
  int edgeMode;
  std::uint32_t sampleType;
  std::uint32_t channels;
  float emphasis;
  bool emphasisAlpha;
  int content;  // as MakeSource has it
  bool stored;  // stored channels, by ConvolveChannels
  float gamma;  // of those
  float offset;
  float gain;

  bool operator==(const FrameCase&) const = default;

  lx::Look Look() const { return {emphasis, emphasisAlpha, edgeMode}; }
};

inline std::ostream& operator<<(std::ostream& out, const FrameCase& c) {
  return out << "seed " << c.seed << ": " << c.width << " x " << c.height << ", shape " << c.shape
             << ", radius " << c.radiusX << " " << c.radiusY << ", rotation " << c.rotation
             << ", sides " << c.sides << ", softness " << c.softness << ", aspect " << c.aspectX
             << " " << c.aspectY << ", edge " << c.edgeMode << ", type " << c.sampleType
             << ", channels " << c.channels << ", emphasis " << c.emphasis
             << (c.emphasisAlpha ? " and of alpha" : "") << ", content " << c.content
             << (c.stored ? ", stored" : "") << ", gamma " << c.gamma << " " << c.offset << " "
             << c.gain;
}

// Sides of 1 to largest, small ones as often as large ones.
template <std::size_t count>
FrameCase RandomCase(std::uint32_t seed, int largest, const float (&emphases)[count]) {
  std::mt19937 random(seed);
  const auto below = [&](int n) { return static_cast<int>(random() % static_cast<unsigned>(n)); };
  const auto part = [&](float from, float to) {
    return from + (to - from) * static_cast<float>(random() / 4294967296.0);
  };
  const auto side = [&] {
    return std::max(1, static_cast<int>(std::pow(static_cast<float>(largest), part(0, 1)) + 0.5F));
  };
  FrameCase c{};
  c.seed = seed;
  c.width = side();
  c.height = side();
  c.shape = below(5);
  const float reach = part(0.5F, 2.0F + 0.5F * static_cast<float>(std::max(c.width, c.height)));
  c.radiusX = std::min(reach, 60.0F);
  c.radiusY = below(2) == 0 ? c.radiusX : c.radiusX * part(0.3F, 1.0F);
  c.rotation = below(3) == 0 ? 0.0F : part(0, 360);
  c.sides = 3 + below(8);
  c.softness = below(3) == 0 ? part(0, 4) : 0.0F;
  c.aspectX = below(4) == 0 ? part(0.5F, 2) : 1.0F;
  c.aspectY = below(4) == 0 ? part(0.5F, 2) : 1.0F;
  c.edgeMode = below(3) == 0 ? lx::kEdgeZero : lx::kEdgeReplicate;
  constexpr std::uint32_t kTypes[] = {lx::kSampleU16, lx::kSampleU16, lx::kSampleU8,
                                      lx::kSampleU32};
  c.sampleType = kTypes[below(4)];
  constexpr std::uint32_t kChannels[] = {4, 4, 3, 5};
  c.channels = kChannels[below(4)];
  c.emphasis = emphases[below(static_cast<int>(count))];
  c.emphasisAlpha = below(2) == 0;
  c.content = below(5);
  c.stored = below(5) == 0;
  const bool shaped = below(2) == 0;
  c.gamma = shaped ? part(0.3F, 4) : 1.0F;
  c.offset = shaped ? part(-0.2F, 0.2F) : 0.0F;
  c.gain = shaped ? part(0.5F, 2) : 1.0F;
  return c;
}

// Pictures that a blur has trouble with:
//   0 noise   1 noise in the dark   2 ramps   3 black with points of light   4 flat but for an edge
inline Image MakeSource(const FrameCase& c) {
  Image image = MakeImage(c.width, c.height, c.channels, c.sampleType);
  std::mt19937 random(c.seed + 1);
  const auto noise = [&] { return random() / 4294967295.0; };
  const double full = LargestSample(c.sampleType);
  double flat[2][8];
  for (auto& each : flat) {
    std::generate(std::begin(each), std::end(each), noise);
  }
  const int edge = static_cast<int>(noise() * c.width);
  for (int y = 0; y < c.height; ++y) {
    for (int x = 0; x < c.width; ++x) {
      const bool lit = random() % 97 == 0;
      for (std::uint32_t channel = 0; channel < c.channels; ++channel) {
        double value = noise();
        switch (c.content) {
          case 1:
            value *= 0.02;
            break;
          case 2:
            value = (channel % 2 == 0 ? (x + 0.5) / c.width : (y + 0.5) / c.height);
            break;
          case 3:
            value = lit ? value : 0.0;
            break;
          case 4:
            value = flat[x < edge ? 0 : 1][channel];
            break;
          default:
            break;
        }
        const std::size_t at = (static_cast<std::size_t>(y) * c.width + x) * c.channels + channel;
        SetSample(image, at, std::floor(value * full + 0.5));
      }
    }
  }
  return image;
}

inline void LoadAperture(lx::DefocusEngine* engine, const FrameCase& c) {
  engine->SetPsfSoftness(c.softness);
  engine->SetPixelAspect(c.aspectX, c.aspectY);
  if (c.shape != 0) {
    engine->BuildShapePsf(c.width, c.height, c.shape, c.radiusX, c.radiusY, c.rotation, c.sides);
  } else {
    const Image picture = NoiseImage(c.width, c.height, 3, lx::kSampleU8, c.seed + 2);
    engine->BuildImagePsf(picture.get(), c.width / 2, c.height / 2, c.radiusX * 0.5F,
                          c.radiusX * 0.5F);
  }
}

// The frame through the aperture that is loaded.
inline Image RenderLoaded(lx::DefocusEngine* engine, const FrameCase& c) {
  const Image source = MakeSource(c);
  Image dest = MakeImage(c.width, c.height, c.channels, c.sampleType);
  std::fill_n(Samples<std::uint8_t>(dest), SampleCount(dest) * dest->elementBytes,
              std::uint8_t{0x55});
  engine->SetEdgeMode(c.edgeMode);
  engine->SetEmphasis(c.emphasis);
  engine->SetEmphasisAlpha(c.emphasisAlpha);
  engine->SetGamma(c.gamma);
  engine->SetOutputOffset(c.offset);
  engine->SetOutputGain(c.gain);
  EXPECT_TRUE(engine->SetSourceImage(source.get())) << c;
  // Of stored channels one: with margins of zero, mode 4 reads what the channel before left there.
  const std::uint32_t one = 1U << (c.seed % c.channels);
  EXPECT_TRUE(c.stored ? engine->ConvolveChannels(dest.get(), one)
                       : engine->Convolve(dest.get(), 15))
      << c << ": status " << engine->GetStatus();
  return dest;
}

inline Image RenderCase(lx::DefocusEngine* engine, const FrameCase& c) {
  LoadAperture(engine, c);
  EXPECT_EQ(lx::kStatusOk, engine->GetStatus()) << c;
  return RenderLoaded(engine, c);
}

// The mask that an engine has built.
inline std::vector<std::uint8_t> MaskOf(const lx::DefocusEngine& engine) {
  const lx::ImageRec* mask = Inside(engine).psfMask();
  const auto* bytes = static_cast<const std::uint8_t*>(mask->data);
  return {bytes, bytes + std::ptrdiff_t{mask->width} * mask->height};
}

}  // namespace lx_test
