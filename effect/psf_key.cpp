// SPDX-License-Identifier: BSD-3-Clause
#include "effect/psf_key.h"

#include <cmath>

#include "effect/glimmer_blur_info.h"

namespace lx {
namespace {

// Degrees of the rotation, pixels of the radii, parts of an aspect.
constexpr double kTolerance = 0.01;

// Strict, and not a number is never near anything.
bool IsNear(double value, double previous) { return std::fabs(value - previous) < kTolerance; }

}  // namespace

bool SharesPsf(const PsfKey& frame, const PsfKey& previous) {
  return frame.shape == previous.shape && frame.shape != kImage && frame.width == previous.width &&
         frame.height == previous.height &&
         // Intended: the control's double against a float. Beyond 262,144 degrees even a rotation
         // that stands still may differ from itself.
         IsNear(frame.rotation, previous.psfRotation) && IsNear(frame.radiusX, previous.radiusX) &&
         IsNear(frame.radiusY, previous.radiusY) && frame.sides == previous.sides &&
         IsNear(frame.aspectX, previous.aspectX) && IsNear(frame.aspectY, previous.aspectY);
}

}  // namespace lx
