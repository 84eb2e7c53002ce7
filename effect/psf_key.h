// SPDX-License-Identifier: BSD-3-Clause
// PsfKey: the values that a frame's PSF is made from, and whether two frames share one.
#pragma once

#include <cstdint>

namespace lx {

struct PsfKey {
  std::int32_t shape = 0;  // an ApertureShape, or a value without a shape
  std::int32_t width = 0;  // of the frame, in pixels
  std::int32_t height = 0;
  double rotation = 0.0;     // degrees, as the control has them
  float psfRotation = 0.0F;  // the same in single precision: what the PSF is turned by
  float radiusX = 0.0F;      // pixels, none below half a one
  float radiusY = 0.0F;
  std::int32_t sides = 0;
  float aspectX = 0.0F;  // of a pixel
  float aspectY = 0.0F;
};

// Whether a frame can take the PSF of the frame before it. Every value counts in every shape, also
// where the PSF would come out the same. The image shape shares none: its picture may be another
// one. Not-a-number is like no value, itself included.
bool SharesPsf(const PsfKey& frame, const PsfKey& previous);

}  // namespace lx
