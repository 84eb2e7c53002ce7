// SPDX-License-Identifier: BSD-3-Clause
// What the library makes of a frame of 8 bits: for comparisons with what comes out of a door.
#pragma once

#include <gtest/gtest.h>

#include <cstdint>
#include <random>
#include <vector>

#include "doors/library/glimmerblur.h"

namespace lx_test {

using Pixels = std::vector<std::uint32_t>;

// Where the aperture is, of a look whose shape is a picture.
struct ApertureDisc {
  double centreX;
  double centreY;
  double inner;
  double outer;
};

inline glimmerblur_frame FrameOf(const Pixels& pixels, int width, int height,
                                 std::int32_t alpha = GLIMMERBLUR_STRAIGHT) {
  glimmerblur_frame frame;
  glimmerblur_frame_init(&frame);
  frame.rect = {0, 0, width, height};
  frame.sample = GLIMMERBLUR_U8;
  frame.channels = 4;
  frame.alpha = alpha;
  frame.data = const_cast<std::uint32_t*>(pixels.data());
  return frame;
}

//   aperture  null where the look draws its own
inline Pixels LibraryFrame(const glimmerblur_look& look, const Pixels& in, int width, int height,
                           std::int32_t alpha = GLIMMERBLUR_STRAIGHT,
                           const Pixels* aperture = nullptr, const ApertureDisc& disc = {}) {
  Pixels out(in.size());
  const glimmerblur_frame source = FrameOf(in, width, height, alpha);
  const glimmerblur_frame destination = FrameOf(out, width, height, alpha);
  glimmerblur* object = nullptr;
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_create(nullptr, &object));
  if (aperture != nullptr) {
    const glimmerblur_frame picture = FrameOf(*aperture, width, height);
    EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_set_aperture(object, &picture, disc.centreX, disc.centreY,
                                                       disc.inner, disc.outer));
  }
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_set_look(object, &look)) << glimmerblur_message(object);
  EXPECT_EQ(GLIMMERBLUR_OK, glimmerblur_render(object, &source, &destination, nullptr))
      << glimmerblur_message(object);
  glimmerblur_destroy(object);
  return out;
}

// Darkness with points of light in it, each of its own colour; alpha is full or anything.
inline Pixels Lights(int width, int height, unsigned seed, bool isOpaque) {
  std::mt19937 random(seed);
  Pixels pixels(static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  for (std::uint32_t& pixel : pixels) {
    const bool isLight = random() % 40 == 0;
    pixel = static_cast<std::uint32_t>(random()) & (isLight ? 0xFFFFFFU : 0x1F2F3FU);
    pixel |= isOpaque ? 0xFF000000U : static_cast<std::uint32_t>(random()) & 0xFF000000U;
  }
  return pixels;
}

}  // namespace lx_test
