// SPDX-License-Identifier: BSD-3-Clause
// What the engine computes, by its definition and with none of its code.
#pragma once

#include <algorithm>
#include <cmath>
#include <cstdint>
#include <vector>

#include "tests/support/images.h"

namespace lx_test {

// A grid of doubles, side x side.
struct Grid {
  int side;
  std::vector<double> values;

  explicit Grid(int n) : side(n), values(static_cast<std::size_t>(n) * n, 0.0) {}
  double& At(int x, int y) { return values[static_cast<std::size_t>(y) * side + x]; }
  double At(int x, int y) const { return values[static_cast<std::size_t>(y) * side + x]; }
};

// The PSF grid of an engine over its loads: each load writes the mask into the frame's
// rectangle of what the last one left, scales all to sum 1 and moves the middle to (0, 0).
class PsfModel {
 public:
  PsfModel(int side, int width, int height) : grid_(side), width_(width), height_(height) {}

  void Load(const std::vector<std::uint8_t>& mask) {
    const int n = grid_.side;
    const int left = (n - width_) / 2;
    const int top = (n - height_) / 2;
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) {
        grid_.At(left + x, top + y) = mask[static_cast<std::size_t>(y) * width_ + x] / 255.0;
      }
    }
    double sum = 0.0;
    for (const double v : grid_.values) {
      sum += v;
    }
    Grid shifted(n);
    for (int y = 0; y < n; ++y) {
      for (int x = 0; x < n; ++x) {
        shifted.At(x, y) = grid_.At((x + n / 2) % n, (y + n / 2) % n) / sum;
      }
    }
    grid_ = shifted;
  }

  const Grid& Shifted() const { return grid_; }

 private:
  Grid grid_;
  int width_;
  int height_;
};

// out(x, y) = sum over u, v of psf(u, v) in(x - u, y - v), circular in the grid, the frame's
// edge repeated into the margins, or zero there.
inline std::vector<double> ConvolvePlane(const std::vector<double>& plane, int w, int h,
                                         const Grid& psf, bool replicate = true) {
  const int n = psf.side;
  const int left = (n - w) / 2;
  const int top = (n - h) / 2;
  Grid padded(n);
  for (int y = 0; y < n; ++y) {
    for (int x = 0; x < n; ++x) {
      const int sx = std::clamp(x - left, 0, w - 1);
      const int sy = std::clamp(y - top, 0, h - 1);
      const bool inside = sx == x - left && sy == y - top;
      if (inside || replicate) {
        padded.At(x, y) = plane[static_cast<std::size_t>(sy) * w + sx];
      }
    }
  }
  std::vector<double> out(static_cast<std::size_t>(w) * h, 0.0);
  for (int v = 0; v < n; ++v) {
    for (int u = 0; u < n; ++u) {
      const double weight = psf.At(u, v);
      if (weight == 0.0) {
        continue;
      }
      for (int y = 0; y < h; ++y) {
        for (int x = 0; x < w; ++x) {
          out[static_cast<std::size_t>(y) * w + x] +=
              weight * padded.At((left + x - u + n) % n, (top + y - v + n) % n);
        }
      }
    }
  }
  return out;
}

// The same of one channel of a 16-bit image, in its own scale.
inline std::vector<double> ConvolveChannel(const Image& image, int channel, const Grid& psf,
                                           bool replicate = true) {
  std::vector<double> plane;
  const std::size_t count = static_cast<std::size_t>(image->width) * image->height;
  for (std::size_t i = 0; i < count; ++i) {
    plane.push_back(Samples<std::uint16_t>(image)[i * image->channels + channel]);
  }
  return ConvolvePlane(plane, image->width, image->height, psf, replicate);
}

}  // namespace lx_test
