// SPDX-License-Identifier: BSD-3-Clause
// LXImage: one frame on its way between host and effect.
//
// Four 16-bit samples a pixel, of which 15 bits are used: 0 to 32767, 32767 being full
// intensity and opaque alpha. Rows are contiguous, the picture's bottom row first;
// channels 0 to 2 are red, green and blue, channel 3 is alpha.
#pragma once

#include <cstdint>

namespace lx {

class LXImage {
 public:
  // A new image of its own samples, which are not set. Null if there is no memory, for a
  // negative side, or for more than 0x7fffffff bytes. 0 x 0 is an empty image.
  static LXImage* Make(std::int32_t width, std::int32_t height);

  //   ignored  read by nobody
  //   samples  borrowed; null makes samples of the image's own, and leaves data and rows
  //            null where that fails
  //   tag      kept
  LXImage(std::int32_t width, std::int32_t height, float ignored, std::uint16_t* samples,
          std::int32_t tag);
  ~LXImage();
  LXImage(const LXImage&) = delete;
  LXImage& operator=(const LXImage&) = delete;

  // Copies channel 3 of every pixel of the source, over the smaller of both sizes.
  void CopyAlphaFrom(LXImage* source);

  std::uint16_t* data = nullptr;
  std::int32_t ownsData = 0;
  LXImage* alphaSource = nullptr;  // valid only inside CopyAlphaFrom
  std::uint16_t** rows = nullptr;  // rows[i] is the start of row i
  std::int32_t width;
  std::int32_t height;
  double aspectX = 1.0;  // pixel aspect
  double aspectY = 1.0;
  double offsetX = 0.0;  // read by nobody
  double offsetY = 0.0;
  float scale;  // 720 / width
  std::int32_t tag;
  void* extra = nullptr;  // freed with the image, by lx_free

 private:
  void CopyAlphaRows(std::int32_t first, std::int32_t last);
};

}  // namespace lx
