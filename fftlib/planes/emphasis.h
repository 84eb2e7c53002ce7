// SPDX-License-Identifier: BSD-3-Clause
// The highlight emphasis: a curve that presses everything but the highlights down, and
// its exact inverse. Both map 0..1 to 0..1, fix its ends, and clamp what lies beyond;
// not-a-number stays what it is.
//
//   g  the emphasis; the curve is a hyperbola up to 50, above that a power of it, whose
//      exponent grows to 14.5 at 500 and stays there. Up to 1 there is no curve: the
//      functions give their argument back, not even clamped
//
// Apart from rounding each pair is the identity on 0..1.
#pragma once

namespace lx {

// In double throughout. The curve starts at g - 1 = 0.001.
double ApplyEmphasisD(double x, double g);
double UndoEmphasisD(double y, double g);

// With the argument and some constants as floats, which moves the results by about 1e-9.
double ApplyEmphasis(float x, float g);
double UndoEmphasis(float y, float g);

}  // namespace lx
