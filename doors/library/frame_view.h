// SPDX-License-Identifier: BSD-3-Clause
// A caller's frame, checked and turned: rows go up from the bottom of the picture, as the engine
// has them, whatever the caller's own order.
#pragma once

#include <cstddef>
#include <cstdint>

#include "doors/library/box.h"
#include "doors/library/glimmerblur.h"
#include "imagelib/imagelib.h"

namespace lx {

// The caller's samples are borrowed.
struct FrameView {
  Box box;  // of the whole picture
  std::int32_t sample = GLIMMERBLUR_FLOAT;
  std::int32_t channels = 4;
  bool isRgba = true;       // else every channel is for itself
  bool isStraight = false;  // and has alpha
  unsigned char* data = nullptr;
  std::ptrdiff_t rowStride = 0;  // upwards
  std::ptrdiff_t pixelStride = 0;
  std::ptrdiff_t channelStride = 0;

  unsigned char* At(std::int32_t x, std::int32_t y) const {
    return data + (y - box.y) * rowStride + (x - box.x) * pixelStride;
  }
  std::size_t SampleBytes() const {
    return sample == GLIMMERBLUR_U8 ? 1 : sample == GLIMMERBLUR_U16 ? 2 : 4;
  }
};

// Throws a Refusal that begins with the frame's name.
void CheckRect(const glimmerblur_rect& rect, const char* name);
void CheckFrame(const glimmerblur_frame* frame, const char* name);

// Of a frame and a whole that have been checked.
FrameView ViewOf(const glimmerblur_frame& frame, const glimmerblur_rect& whole);

// How many samples inside the box are not finite.
//   box  inside the frame's
std::uint64_t CountNotFinite(const FrameView& frame, const Box& box);

// Row y of the picture into a row of a work picture: floats of 1, or 3 or 4 channels, or 16-bit
// samples. What is not finite becomes 0; straight colours are multiplied by alpha.
//   held     the only pixels that are read, inside the frame. Behind them their edge is repeated,
//   or
//            there is nothing
//   x        first column
//   channel  which one goes into a work picture of one channel
struct RowReading {
  Box held;
  bool repeats;
  std::int32_t channel;
};
void ReadRow(const FrameView& frame, const RowReading& reading, std::int32_t x, std::int32_t y,
             const ImageRec& work, std::int32_t workRow);

// A part of a work picture's row into row y of the frame, from column x on: rounded, cut to the
// range of integers, and divided by alpha where colours are straight.
//   workX, workRow  where it begins in the work picture
void WriteRow(const ImageRec& work, std::int32_t workX, std::int32_t workRow, std::int32_t width,
              std::int32_t x, std::int32_t y, std::int32_t channel, const FrameView& frame);

}  // namespace lx
