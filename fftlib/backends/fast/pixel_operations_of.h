// SPDX-License-Identifier: BSD-3-Clause
// Between eight rows of pixels and planes in buffers, in one form.
//
// A pixel of four 16-bit channels is one 64-bit lane, so that turning rows into lanes costs one
// transpose for all four planes.
#pragma once

#include <cstddef>
#include <cstdint>

#include "fftkernels/fftkernels/vectors.h"
#include "fftlib/backends/fast/line_operations.h"
#include "fftlib/planes/colour_transform.h"
#include "fftlib/planes/pixel_lanes.h"

namespace lx {

template <class Form, int lanes>
class PixelOperationsOf {
 public:
  static void Read(const PixelRows& rows, std::int32_t width, const PlaneBuffers& buffers) {
    const std::int32_t whole = width - width % lanes;
    for (std::int32_t x = 0; x < whole; x += lanes) {
      ReadTiles<lanes>(rows, x, buffers);
    }
    for (std::int32_t x = whole; x < width; ++x) {
      ReadTiles<1>(rows, x, buffers);
    }
  }

  static void Write(const PlaneBuffers& buffers, std::int32_t width, std::int32_t count,
                    const PixelRows& rows) {
    const std::int32_t whole = width - width % lanes;
    for (std::int32_t x = 0; x < whole; x += lanes) {
      WriteTiles<lanes>(buffers, x, count, rows);
    }
    for (std::int32_t x = whole; x < width; ++x) {
      WriteTiles<1>(buffers, x, count, rows);
    }
  }

 private:
  template <int count>
  using Pixels = Lanes<Form, std::uint64_t, count>;
  template <int count>
  using Numbers = Lanes<Form, double, count>;

  LX_ALWAYS_INLINE static std::uint64_t* At(const PixelRows& rows, std::int32_t row,
                                            std::int32_t x) {
    return reinterpret_cast<std::uint64_t*>(rows[static_cast<std::size_t>(row)] + 4 * x);
  }

  // count pixels of each row, from pixel x on, by as many rows at once.
  template <int count>
  LX_ALWAYS_INLINE static void ReadTiles(const PixelRows& rows, std::int32_t x,
                                         const PlaneBuffers& buffers) {
    using V = typename Numbers<count>::Vector;
    for (std::int32_t l = 0; l < kLines; l += count) {
      typename Pixels<count>::Vector pixels[count];
      ForEach<count>([&](auto k) __attribute__((always_inline)) {
        pixels[k] = Pixels<count>::Load(At(rows, l + k, x));
      });
      Pixels<count>::Transpose(pixels);
      ForEach<count>([&](auto k) __attribute__((always_inline)) {
        const std::ptrdiff_t at = std::ptrdiff_t{x + k} * kLines + l;
        const V r = SampleToUnit<0, V>(pixels[k]);
        const V g = SampleToUnit<1, V>(pixels[k]);
        const V b = SampleToUnit<2, V>(pixels[k]);
        if (buffers[0] != nullptr) {
          Numbers<count>::Store(buffers[0] + at, b * kLumaB + g * kLumaG + r * kLumaR);
        }
        if (buffers[1] != nullptr) {
          Numbers<count>::Store(buffers[1] + at, r * kCrR + g * kCrG + b * kCrB + 0.5);
        }
        if (buffers[2] != nullptr) {
          Numbers<count>::Store(buffers[2] + at, r * kCbR + g * kCbG + b * kCbB + 0.5);
        }
        if (buffers[3] != nullptr) {
          Numbers<count>::Store(buffers[3] + at, SampleToUnit<3, V>(pixels[k]));
        }
      });
    }
  }

  template <int count>
  LX_ALWAYS_INLINE static void WriteTiles(const PlaneBuffers& buffers, std::int32_t x,
                                          std::int32_t rowCount, const PixelRows& rows) {
    using V = typename Numbers<count>::Vector;
    using P = typename Pixels<count>::Vector;
    for (std::int32_t l = 0; l < kLines; l += count) {
      P pixels[count];
      ForEach<count>([&](auto k) __attribute__((always_inline)) {
        const std::ptrdiff_t at = std::ptrdiff_t{x + k} * kLines + l;
        const V y = Numbers<count>::Load(buffers[0] + at);
        const V cr = Numbers<count>::Load(buffers[1] + at) - 0.5;
        const V cb = Numbers<count>::Load(buffers[2] + at) - 0.5;
        pixels[k] = UnitToSample<P>(y + cr * kRCr) |
                    (UnitToSample<P>(y * kGY - cr * kGCr - cb * kGCb) << 16) |
                    (UnitToSample<P>(y * kBY + cb * kBCb) << 32);
        if (buffers[3] != nullptr) {
          pixels[k] |= UnitToSample<P>(Numbers<count>::Load(buffers[3] + at)) << 48;
        }
      });
      Pixels<count>::Transpose(pixels);
      ForEach<count>([&](auto k) __attribute__((always_inline)) {
        if (l + k < rowCount) {
          std::uint64_t* to = At(rows, l + k, x);
          if (buffers[3] == nullptr) {
            pixels[k] |= Pixels<count>::Load(to) & (std::uint64_t{0xFFFF} << 48U);
          }
          Pixels<count>::Store(to, pixels[k]);
        }
      });
    }
  }
};

}  // namespace lx
