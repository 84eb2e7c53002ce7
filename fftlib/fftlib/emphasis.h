// The highlight emphasis: a curve that presses everything but the highlights down, and
// its exact inverse. Both map 0..1 to 0..1 and fix its ends.
//
//   g  the emphasis; the curve is a hyperbola up to 50, above that a power of it, and
//      below 1.001 both functions give their argument back, not even clamped
#pragma once

namespace lx {

// Whether the curve changes anything. Loops ask once and leave it out.
bool HasEmphasis(double g);

double ApplyEmphasisD(double x, double g);
double UndoEmphasisD(double y, double g);

}  // namespace lx
