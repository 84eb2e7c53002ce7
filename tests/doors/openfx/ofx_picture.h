// SPDX-License-Identifier: BSD-3-Clause
// A picture as a host keeps it: pixels from the bottom left, rows anywhere in memory.
#pragma once

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

#include "doors/library/glimmerblur.h"
#include "doors/openfx/ofx/image_effect.h"

namespace lx_test {

enum class Depth { kByte, kShort, kFloat };

class OfxPicture {
 public:
  enum class Rows { kUpwards, kDownwards };  // in memory; the second kind has negative strides

  OfxPicture(const ofx::RectI& bounds, Depth depth, int channels, Rows rows = Rows::kUpwards);

  // Fills it with noise and a few bright points; alpha is between a half and 1.
  void FillWithNoise(unsigned int seed);
  void Fill(double value);

  // Of full scale, but as they are in floats.
  double Get(int x, int y, int channel) const;
  void Set(int x, int y, int channel, double value);

  const ofx::RectI& Bounds() const { return bounds_; }
  Depth SampleDepth() const { return depth_; }
  int Channels() const { return channels_; }
  const char* DepthName() const;
  const char* ComponentsName() const;
  int RowBytes() const { return rowBytes_; }
  void* LowerLeft();

  // All memory, gaps between rows too.
  const std::vector<unsigned char>& Bytes() const { return bytes_; }

  // Its samples without gaps, the top row first.
  std::vector<unsigned char> TopRowFirst() const;

 private:
  const unsigned char* At(int x, int y, int channel) const;
  int SampleBytes() const;

  ofx::RectI bounds_;
  Depth depth_;
  int channels_;
  int rowBytes_;
  std::ptrdiff_t lowerLeft_;
  std::vector<unsigned char> bytes_;
};

// What the library itself makes of a picture, its top row first.
std::vector<unsigned char> BlurredByLibrary(const OfxPicture& picture, const glimmerblur_look& look,
                                            glimmerblur_alpha alpha = GLIMMERBLUR_PREMULTIPLIED,
                                            const OfxPicture* aperture = nullptr);

}  // namespace lx_test
