// SPDX-License-Identifier: BSD-3-Clause
// What a frame becomes by plain sums of positive numbers in long double: no transform, and none of
// the engine's code. One sample at a time, for samples that a test has doubts about.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <vector>

#include "fftlib/core/run.h"
#include "tests/support/images.h"
#include "tests/support/kernel_frames.h"

namespace lx_test {

// The emphasis: a hyperbola through (0, 0) and (1, 1), above 50 a power of it.
inline long double PlainExponent(long double g) { return g > 50.0L ? (g - 50.0L) * 0.03L + 1 : 1; }

inline long double PlainCurve(long double x, long double g) {
  const long double a = 1.0L / g;
  const long double clamped = std::clamp(x, 0.0L, 1.0L);
  // (1 / ((1 - x) b + a) - a) / b over one denominator, so that nothing cancels near 0.
  const long double y = a * clamped / ((1.0L - clamped) * (g - a) + a);
  return std::pow(y, PlainExponent(g));
}

inline long double PlainUncurve(long double y, long double g) {
  const long double a = 1.0L / g;
  const long double root = std::pow(std::clamp(y, 0.0L, 1.0L), 1.0L / PlainExponent(g));
  // 1 - (1 / (y b + a) - a) / b over one denominator.
  return root * g / (root * (g - a) + a);
}

// A mask's weights, apart from those of zero, by how far from a pixel they read.
struct PlainWeight {
  std::int32_t across;  // pixel x reads x - across
  std::int32_t down;
  long double weight;  // all of them sum up to 1
};

inline std::vector<PlainWeight> PlainWeights(const std::vector<std::uint8_t>& mask, int width,
                                             int height) {
  std::vector<PlainWeight> weights;
  long double sum = 0.0L;
  for (int y = 0; y < height; ++y) {
    for (int x = 0; x < width; ++x) {
      const int byte = mask[static_cast<std::size_t>(y) * width + x];
      if (byte != 0) {
        // The middle of an odd side is past its middle pixel.
        weights.push_back({x - (width + 1) / 2, y - (height + 1) / 2, byte * 1.0L});
        sum += byte;
      }
    }
  }
  for (PlainWeight& each : weights) {
    each.weight /= sum;
  }
  return weights;
}

class PlainFrame {
 public:
  PlainFrame(const Image& source, const std::vector<std::uint8_t>& mask, const lx::Look& look)
      : width_(source->width),
        height_(source->height),
        channels_(source->channels),
        look_(look),
        isFloat_(source->sampleType == lx::kSampleFloat),
        grey_(isFloat_ ? 0.0L : 0.5L),
        weights_(PlainWeights(mask, width_, height_)) {
    const std::size_t pixels = static_cast<std::size_t>(width_) * height_;
    const long double full = LargestSample(source->sampleType);
    for (std::size_t i = 0; i < pixels * channels_; ++i) {
      samples_.push_back(SampleAt(source, i) / full);
    }
    for (std::size_t i = 0; i < pixels; ++i) {
      std::array<long double, 4> sample{};
      std::copy_n(&samples_[i * channels_], std::min<std::size_t>(4, channels_), sample.begin());
      const auto& [r, g, b, alpha] = sample;
      planes_[0].push_back(0.299F * r + 0.587F * g + 0.114F * b);
      planes_[1].push_back(0.5F * r - 0.418688F * g - 0.081312F * b + grey_);
      planes_[2].push_back(-0.213267F * r - 0.418688F * g + 0.617689F * b + grey_);
      planes_[3].push_back(alpha);
    }
    for (const std::size_t p : {0, 3}) {
      if (IsCurved(p)) {
        for (long double& value : planes_[p]) {
          value = PlainCurve(value, look_.emphasis);
        }
      }
    }
  }

  // The four values of a pixel, of 0 to 1 but not cut to it.
  std::array<long double, 4> At(int x, int y) const {
    std::array<long double, 4> plane{};
    EachWeight(x, y, [&](long double weight, std::size_t pixel) {
      for (std::size_t p = 0; p < 4; ++p) {
        plane[p] += weight * planes_[p][pixel];
      }
    });
    for (const std::size_t p : {0, 3}) {
      if (IsCurved(p)) {
        plane[p] = PlainUncurve(plane[p], look_.emphasis);
      }
    }
    const long double cr = plane[1] - grey_;
    const long double cb = plane[2] - grey_;
    if (isFloat_) {
      return SolveColours(plane[0], cr, cb, plane[3]);
    }
    return {plane[0] + 1.402F * cr, 0.996036F * plane[0] - 0.714136F * cr - 0.277836F * cb,
            1.020408F * plane[0] + 1.430612F * cb, plane[3]};
  }

  // Whether a stored channel is raised to a power: alpha only where it is treated like the picture.
  bool IsRaised(std::size_t channel, float gamma) const {
    return gamma != 1.0F && (channel != 3 || look_.emphasisAlpha);
  }

  // A stored channel, of 0 to 1, raised where it is.
  long double StoredAt(int x, int y, std::size_t channel, float gamma) const {
    const bool isRaised = IsRaised(channel, gamma);
    long double sum = 0.0L;
    EachWeight(x, y, [&](long double weight, std::size_t pixel) {
      const long double value = samples_[pixel * channels_ + channel];
      sum += weight * (isRaised ? std::pow(value, static_cast<long double>(gamma)) : value);
    });
    return sum;
  }

 private:
  // The colours of floats solve the equations of their planes, where those of integers have
  // constants of their own. Blue is got rid of first, then green.
  static std::array<long double, 4> SolveColours(long double luma, long double cr, long double cb,
                                                 long double alpha) {
    const long double rows[3][4] = {{0.299F, 0.587F, 0.114F, luma},
                                    {0.5F, -0.418688F, -0.081312F, cr},
                                    {-0.213267F, -0.418688F, 0.617689F, cb}};
    long double two[2][3];
    for (int i = 0; i < 2; ++i) {
      const long double factor = rows[i][2] / rows[2][2];
      two[i][0] = rows[i][0] - factor * rows[2][0];
      two[i][1] = rows[i][1] - factor * rows[2][1];
      two[i][2] = rows[i][3] - factor * rows[2][3];
    }
    const long double factor = two[0][1] / two[1][1];
    const long double r = (two[0][2] - factor * two[1][2]) / (two[0][0] - factor * two[1][0]);
    const long double g = (two[1][2] - two[1][0] * r) / two[1][1];
    const long double b = (rows[2][3] - rows[2][0] * r - rows[2][1] * g) / rows[2][2];
    return {r, g, b, alpha};
  }

  // Calls function(weight, pixel) for the pixels that one pixel is made of.
  template <class Function>
  void EachWeight(int x, int y, Function function) const {
    for (const PlainWeight& each : weights_) {
      const int fromX = std::clamp(x - each.across, 0, width_ - 1);
      const int fromY = std::clamp(y - each.down, 0, height_ - 1);
      const bool isOutside = fromX != x - each.across || fromY != y - each.down;
      if (!isOutside || look_.edgeMode != lx::kEdgeZero) {
        function(each.weight, static_cast<std::size_t>(fromY) * width_ + fromX);
      }
    }
  }

  bool IsCurved(std::size_t plane) const {
    return look_.emphasis >= 1.001F && (plane == 0 || (plane == 3 && look_.emphasisAlpha));
  }

  int width_;
  int height_;
  std::size_t channels_;
  lx::Look look_;
  bool isFloat_;
  long double grey_;  // what chroma without a colour is; around a picture there may be 0
  std::vector<PlainWeight> weights_;
  std::vector<long double> samples_;
  std::array<std::vector<long double>, 4> planes_;
};

}  // namespace lx_test
