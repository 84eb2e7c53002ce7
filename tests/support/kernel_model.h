// SPDX-License-Identifier: BSD-3-Clause
// What the kernel modes compute, by plain sums in double and with none of the engine's code.
#pragma once

#include <algorithm>
#include <cmath>
#include <complex>
#include <cstddef>
#include <cstdint>
#include <numbers>
#include <vector>

#include "fftlib/core/complex_sample.h"
#include "fftlib/fftlib.h"
#include "tests/support/engine_inside.h"
#include "tests/support/images.h"

namespace lx_test {

using ComplexLine = std::vector<std::complex<double>>;

// The frequencies that the places of a spectrum hold: the even ones in the order of half the
// size, then those that are 1 modulo 4 and those that are 3, in the order of a quarter.
inline std::vector<int> FrequencyOrder(int n) {
  if (n < 4) {
    return n == 1 ? std::vector<int>{0} : std::vector<int>{0, 1};
  }
  std::vector<int> order;
  for (const int f : FrequencyOrder(n / 2)) {
    order.push_back(2 * f);
  }
  for (const int step : {1, n - 1}) {
    for (const int f : FrequencyOrder(n / 4)) {
      order.push_back((4 * f + step) % n);
    }
  }
  return order;
}

// There with the positive sign and the places of a spectrum as FrequencyOrder says, and back
// without scaling.
inline ComplexLine Transform(const ComplexLine& in, bool forward) {
  const int n = static_cast<int>(in.size());
  const std::vector<int> order = FrequencyOrder(n);
  ComplexLine roots;
  for (int k = 0; k < n; ++k) {
    roots.push_back(std::polar(1.0, (forward ? 2.0 : -2.0) * std::numbers::pi * k / n));
  }
  ComplexLine out(in.size());
  for (int to = 0; to < n; ++to) {
    for (int from = 0; from < n; ++from) {
      const int turns = forward ? from * order[to] : to * order[from];
      out[to] += in[from] * roots[turns % n];
    }
  }
  return out;
}

struct ComplexGrid {
  int width;
  int height;
  ComplexLine values;

  ComplexGrid(int w, int h) : width(w), height(h), values(static_cast<std::size_t>(w) * h) {}
  std::complex<double>& At(int x, int y) { return values[static_cast<std::size_t>(y) * width + x]; }
  const std::complex<double>& At(int x, int y) const {
    return values[static_cast<std::size_t>(y) * width + x];
  }
};

inline void Transform2D(ComplexGrid* grid, bool forward) {
  for (int y = 0; y < grid->height; ++y) {
    const auto row = grid->values.begin() + static_cast<std::ptrdiff_t>(y) * grid->width;
    const ComplexLine line = Transform(ComplexLine(row, row + grid->width), forward);
    std::copy(line.begin(), line.end(), row);
  }
  for (int x = 0; x < grid->width; ++x) {
    ComplexLine column;
    for (int y = 0; y < grid->height; ++y) {
      column.push_back(grid->At(x, y));
    }
    column = Transform(column, forward);
    for (int y = 0; y < grid->height; ++y) {
      grid->At(x, y) = column[y];
    }
  }
}

// The grids of an engine over its loads and runs, with all that earlier ones leave in them.
class KernelModel {
 public:
  KernelModel(int width, int height, int margin)
      : psf(Padded(width + 2 * margin), Padded(height + 2 * margin)),
        work(psf.width, psf.height),
        left((psf.width - width) / 2),
        top((psf.height - height) / 2),
        width_(width),
        height_(height) {}

  // A load writes the mask into the frame's rectangle of what the last one left, which is a
  // spectrum, scales all to a sum of real parts of 1 and moves the middle to (0, 0).
  void Load(const std::vector<double>& mask) {
    Place(&psf, mask);
    double sum = 0.0;
    for (const auto& value : psf.values) {
      sum += value.real();
    }
    const double scale = static_cast<float>(1.0 / sum);
    ComplexGrid shifted(psf.width, psf.height);
    for (int y = 0; y < psf.height; ++y) {
      for (int x = 0; x < psf.width; ++x) {
        shifted.At(x, y) =
            scale * psf.At((x + psf.width / 2) % psf.width, (y + psf.height / 2) % psf.height);
      }
    }
    Transform2D(&shifted, true);
    for (auto& value : shifted.values) {
      value /= psf.width * psf.height;
    }
    psf = shifted;
  }

  // One plane through the work grid: its values in the frame's rectangle. A pass that is
  // cancelled writes the first rows only.
  std::vector<double> Run(const std::vector<double>& plane, std::int32_t edgeMode,
                          int rows = 1 << 30) {
    Place(&work, plane, rows);
    if (edgeMode == lx::kEdgeReplicate) {
      RepeatEdges(rows);
    }
    Transform2D(&work, true);
    for (std::size_t i = 0; i < work.values.size(); ++i) {
      work.values[i] *= psf.values[i];
    }
    Transform2D(&work, false);
    std::vector<double> result;
    for (int y = 0; y < height_; ++y) {
      for (int x = 0; x < width_; ++x) {
        result.push_back(work.At(left + x, top + y).real());
      }
    }
    return result;
  }

  // Luma, Cr, Cb and, as the fourth, alpha: what a picture's run makes of them. One plane's
  // input may be cut after some rows.
  std::vector<std::vector<double>> RunPicture(const std::vector<std::vector<double>>& planes,
                                              std::int32_t edgeMode, int cutPlane = -1,
                                              int rows = 0) {
    std::vector<std::vector<double>> results;
    for (std::size_t c = 0; c < planes.size(); ++c) {
      if (edgeMode == lx::kEdgeZero && (c == 1 || c == 2)) {
        for (auto& value : work.values) {
          value.real(0.5);
        }
      }
      results.push_back(static_cast<int>(c) == cutPlane ? Run(planes[c], edgeMode, rows)
                                                        : Run(planes[c], edgeMode));
      if (c == 1 || c == 2) {
        std::fill(work.values.begin(), work.values.end(), 0.0);
      }
    }
    return results;
  }

  // What a run in single precision may be off by, for a plane whose values reach 1: each of the
  // log2(width * height) stages of either direction rounds once to 6e-8 of them. In double it is
  // the model's own plain sums that round most, some hundred times to 1.2e-16.
  double Tolerance(std::int32_t mode) const {
    const double stages = 2.0 * std::log2(psf.width * psf.height);
    return mode == lx::kModeKernelF32 ? stages * 6e-8 : 1e-14;
  }

  ComplexGrid psf;  // its spectrum, once one is loaded
  ComplexGrid work;
  int left;  // the frame's first pixel
  int top;

 private:
  static int Padded(int n) {
    int size = 1;
    while (size < n) {
      size *= 2;
    }
    return size;
  }

  void Place(ComplexGrid* grid, const std::vector<double>& plane, int rows = 1 << 30) const {
    for (int y = 0; y < std::min(rows, height_); ++y) {
      for (int x = 0; x < width_; ++x) {
        grid->At(left + x, top + y) = plane[static_cast<std::size_t>(y) * width_ + x];
      }
    }
  }

  // Sideways on the rows that were written, then the frame's first and last row as they are.
  void RepeatEdges(int rows) {
    for (int y = top; y < top + std::min(rows, height_); ++y) {
      for (int x = 0; x < work.width; ++x) {
        work.At(x, y) = work.At(std::clamp(x, left, left + width_ - 1), y);
      }
    }
    for (int y = 0; y < work.height; ++y) {
      for (int x = 0; x < work.width; ++x) {
        work.At(x, y) = work.At(x, std::clamp(y, top, top + height_ - 1));
      }
    }
  }

  int width_;
  int height_;
};

// Sample i of a grid of the engine.
inline std::complex<double> GridSample(const lx::DefocusEngine& engine, const void* grid,
                                       std::size_t i) {
  if (Inside(engine).engineMode() == lx::kModeKernelF64) {
    const auto& sample = static_cast<const lx::ComplexSample<double>*>(grid)[i];
    return {sample.re, sample.im};
  }
  const auto& sample = static_cast<const lx::ComplexSample<float>*>(grid)[i];
  return {sample.re, sample.im};
}

inline ComplexGrid GridOf(const lx::DefocusEngine& engine, const void* grid) {
  ComplexGrid copy(Inside(engine).paddedWidth(), Inside(engine).paddedHeight());
  for (std::size_t i = 0; i < copy.values.size(); ++i) {
    copy.values[i] = GridSample(engine, grid, i);
  }
  return copy;
}

inline void SetGrid(const lx::DefocusEngine& engine, void* grid, const ComplexGrid& values) {
  for (std::size_t i = 0; i < values.values.size(); ++i) {
    const std::complex<double> value = values.values[i];
    if (Inside(engine).engineMode() == lx::kModeKernelF64) {
      static_cast<lx::ComplexSample<double>*>(grid)[i] = {value.real(), value.imag()};
    } else {
      static_cast<lx::ComplexSample<float>*>(grid)[i] = {static_cast<float>(value.real()),
                                                         static_cast<float>(value.imag())};
    }
  }
}

}  // namespace lx_test
