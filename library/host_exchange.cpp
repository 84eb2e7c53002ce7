// SPDX-License-Identifier: BSD-3-Clause
#include "library/host_exchange.h"

#include <cstddef>
#include <cstdint>
#include <memory>
#include <new>

#include "library/host_message.h"

namespace lx {
namespace {

// 15 bits to 16: the new low bit takes the top one, so that both ends of the scale
// survive. A plain doubling would leave white a step short.
std::uint16_t Up(std::uint16_t sample) {
  const unsigned s = sample;
  return static_cast<std::uint16_t>((s >> 14U) | (s * 2U));
}

std::uint16_t Down(std::uint16_t sample) { return static_cast<std::uint16_t>(sample >> 1U); }

void ReadFrame(const std::uint16_t* from, LXImage* image) {
  for (std::int32_t y = image->height - 1; y >= 0; --y) {
    std::uint16_t* to = image->rows[y];
    for (std::int32_t x = 0; x < image->width; ++x, from += 4, to += 4) {
      to[2] = Down(from[0]);
      to[1] = Down(from[1]);
      to[0] = Down(from[2]);
      to[3] = Down(from[3]);
    }
  }
}

}  // namespace

LXImage* ConvertFromQTL(quantel::cPtr<qplugin::iQpluginImage> frame, LXImage* target) {
  if (!frame) {
    frame.Reset();
    return nullptr;
  }
  const quantel::cSize2 size = frame->size();
  // Owns a new image until it is filled: the host may throw when it is asked for its buffer.
  std::unique_ptr<LXImage> made;
  LXImage* image = target;
  if (target == nullptr) {
    const bool isEmpty = size.first < 1 || size.second < 1;
    made.reset(LXImage::Make(isEmpty ? 0 : size.first, isEmpty ? 0 : size.second));
    image = made.get();
    if (image == nullptr) {
      throw std::bad_alloc();
    }
  } else if (target->width != size.first || target->height != size.second) {
    frame.Reset();
    return nullptr;
  }
  image->scale = 1.0F;
  image->aspectX = 1.0;
  image->aspectY = 1.0;
  ReadFrame(frame->buffer(), image);
  frame.Reset();
  (void)made.release();  // it is the caller's, as image
  return image;
}

void ConvertToQTL(const LXImage* image, quantel::cPtr<qplugin::iQpluginImage> frame) {
  if (image == nullptr) {
    SendHostMessage("ConvertToQTL: invalid input pointer!");
    frame.Reset();
    return;
  }
  std::uint16_t* to = frame->buffer();
  for (std::int32_t y = image->height - 1; y >= 0; --y) {
    const std::uint16_t* from = image->rows[y];
    for (std::int32_t x = 0; x < image->width; ++x, from += 4, to += 4) {
      to[0] = Up(from[2]);
      to[1] = Up(from[1]);
      to[2] = Up(from[0]);
      to[3] = Up(from[3]);
    }
  }
  frame.Reset();
}

}  // namespace lx
