// SPDX-License-Identifier: BSD-3-Clause
// What the library's header promises, by plain sums in double: no transform, no tiles, and none of
// its code. One value of the result at a time.
#pragma once

#include <algorithm>
#include <array>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>
#include <vector>

#include "doors/library/glimmerblur.h"

namespace library_test {

// One value of a frame, of 0 to 1 where it is an integer. Row 0 is the first in memory.
struct FrameLook {
  const glimmerblur_frame* frame;

  static int Bytes(int sample) {
    return sample == GLIMMERBLUR_U8 ? 1 : sample == GLIMMERBLUR_U16 ? 2 : 4;
  }
  unsigned char* At(int x, int y, int c) const {
    const std::int64_t bytes = Bytes(frame->sample);
    const std::int64_t channel = frame->channel_stride != 0 ? frame->channel_stride : bytes;
    const std::int64_t pixel =
        frame->pixel_stride != 0 ? frame->pixel_stride : bytes * frame->channels;
    const std::int64_t row = frame->row_stride != 0 ? frame->row_stride : pixel * frame->rect.width;
    return static_cast<unsigned char*>(frame->data) + y * row + x * pixel + c * channel;
  }
  double Get(int x, int y, int c) const {
    const unsigned char* at = At(x, y, c);
    std::uint16_t word = 0;
    float real = 0.0F;
    switch (frame->sample) {
      case GLIMMERBLUR_U8:
        return *at / 255.0;
      case GLIMMERBLUR_U16:
        std::memcpy(&word, at, sizeof word);
        return word / 65535.0;
      default:
        std::memcpy(&real, at, sizeof real);
        return static_cast<double>(real);
    }
  }
};

// A weight of the aperture, from its middle on: to the right, and down as one sees it.
struct Weight {
  int right;
  int down;
  double weight;
};

inline double OpenCurve(double x, double g) {
  if (x <= 0.0 || g <= 1.0) {
    return g <= 1.0 ? x : 0.0;
  }
  const double power = g > 50.0 ? (g - 50.0) * 0.03 + 1.0 : 1.0;
  if (x > 1.0) {
    return 1.0 + (x - 1.0) * power * g * g;
  }
  const double a = 1.0 / g;
  return std::pow(a * x / ((1.0 - x) * (g - a) + a), power);
}

inline double OpenUncurve(double y, double g) {
  if (y <= 0.0 || g <= 1.0) {
    return g <= 1.0 ? y : 0.0;
  }
  const double power = g > 50.0 ? (g - 50.0) * 0.03 + 1.0 : 1.0;
  if (y > 1.0) {
    return 1.0 + (y - 1.0) / (power * g * g);
  }
  const double root = std::pow(y, 1.0 / power);
  const double a = 1.0 / g;
  return root * g / (root * (g - a) + a);
}

// A picture kept apart, so that memory that is read and written may be the same.
class PlainBlur {
 public:
  //   source  holds the whole picture
  PlainBlur(const glimmerblur_frame& source, const glimmerblur_look& look,
            std::vector<Weight> weights)
      : width_(source.rect.width),
        height_(source.rect.height),
        channels_(source.channels),
        isRgba_(source.layout == GLIMMERBLUR_RGBA),
        isStraight_(isRgba_ && source.channels == 4 && source.alpha == GLIMMERBLUR_STRAIGHT),
        look_(look),
        weights_(std::move(weights)) {
    double sum = 0.0;
    for (const Weight& each : weights_) {
      sum += each.weight;
    }
    const bool isTop = source.first_row == GLIMMERBLUR_TOP;
    for (Weight& each : weights_) {
      each.weight /= sum;
      // On in memory.
      each.down = isTop ? each.down : -each.down;
    }
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) {
        for (int c = 0; c < channels_; ++c) {
          double value = FrameLook{&source}.Get(x, y, c);
          if (!std::isfinite(value)) {
            value = 0.0;
            ++replaced_;
          }
          values_.push_back(value);
        }
        double* pixel = &values_[values_.size() - static_cast<std::size_t>(channels_)];
        for (int c = 0; isStraight_ && c < 3; ++c) {
          pixel[c] *= pixel[3];
        }
      }
    }
  }

  std::uint64_t Replaced() const { return replaced_; }

  // The channels of a pixel that is counted as the source's first.
  std::vector<double> At(int x, int y) const {
    std::vector<double> sums(static_cast<std::size_t>(channels_), 0.0);
    std::array<double, 2> curved{};
    for (const Weight& each : weights_) {
      const int fromX = x - each.right;
      const int fromY = y - each.down;
      const bool isInside = fromX >= 0 && fromX < width_ && fromY >= 0 && fromY < height_;
      if (!isInside && look_.edge == GLIMMERBLUR_ZERO) {
        continue;
      }
      const double* pixel = Pixel(fromX, fromY);
      for (int c = 0; c < channels_; ++c) {
        const bool isCurved = !isRgba_ || (c == 3 && look_.emphasis_alpha != 0);
        sums[static_cast<std::size_t>(c)] +=
            each.weight * (isCurved ? OpenCurve(pixel[c], look_.emphasis) : pixel[c]);
      }
      if (isRgba_) {
        curved[0] += each.weight * OpenCurve(Luma(pixel), look_.emphasis);
        curved[1] += each.weight * Luma(pixel);
      }
    }
    Finish(x, y, curved, &sums);
    return sums;
  }

 private:
  static double Luma(const double* p) { return 0.299 * p[0] + 0.587 * p[1] + 0.114 * p[2]; }

  const double* Pixel(int x, int y) const {
    const int column = std::clamp(x, 0, width_ - 1);
    const int row = std::clamp(y, 0, height_ - 1);
    return &values_[(static_cast<std::size_t>(row) * static_cast<std::size_t>(width_) +
                     static_cast<std::size_t>(column)) *
                    static_cast<std::size_t>(channels_)];
  }

  void Finish(int x, int y, const std::array<double, 2>& curved, std::vector<double>* sums) const {
    std::vector<double>& pixel = *sums;
    if (!isRgba_) {
      for (double& value : pixel) {
        value = OpenUncurve(value, look_.emphasis);
      }
      return;
    }
    // Chroma is blurred as it is, so colours move by what luma gains, times their part in grey.
    const double gain = OpenUncurve(curved[0], look_.emphasis) - curved[1];
    for (std::size_t c = 0; c < 3; ++c) {
      pixel[c] += gain * kGrey()[c];
    }
    if (channels_ < 4) {
      return;
    }
    if (look_.blur_alpha == 0) {
      pixel[3] = Pixel(x, y)[3];
    } else if (look_.emphasis_alpha != 0) {
      pixel[3] = OpenUncurve(pixel[3], look_.emphasis);
    }
    for (std::size_t c = 0; isStraight_ && c < 3; ++c) {
      pixel[c] = pixel[3] < 0x1p-24 ? 0.0 : pixel[c] / pixel[3];
    }
  }

  // The colour of luma 1 that has no chroma, in the chroma that the effect uses: solved from
  // 0.5 r - 0.418688 g - 0.081312 b = 0 and -0.213267 r - 0.418688 g + 0.617689 b = 0.
  static const std::array<double, 3>& kGrey() {
    static const std::array<double, 3> kColour = [] {
      const double r = 1.0;
      const double b = (0.5 + 0.213267) / (0.617689 + 0.081312) * r;
      const double g = (0.5 * r - 0.081312 * b) / 0.418688;
      const double luma = 0.299 * r + 0.587 * g + 0.114 * b;
      return std::array<double, 3>{r / luma, g / luma, b / luma};
    }();
    return kColour;
  }

  int width_;
  int height_;
  int channels_;
  bool isRgba_;
  bool isStraight_;
  glimmerblur_look look_;
  std::vector<Weight> weights_;
  std::vector<double> values_;
  std::uint64_t replaced_ = 0;
};

}  // namespace library_test
