// SPDX-License-Identifier: BSD-3-Clause
// The signs of small buttons: paths in one colour, sharp at every size and in every theme.
#pragma once

class QColor;
class QPainter;
class QRectF;

namespace glimmerhost {

// Whether a value has keyframes.
enum class KeyState {
  kNone,       // an outline
  kElsewhere,  // half full: keyframes, but none at this frame
  kHere,       // full
};

enum class Sign {
  kKeyframe,
  kReset,
  kFirst,
  kKeyBefore,
  kPlay,
  kPause,
  kKeyAfter,
  kLast,
};

// A keyframe in the middle of a rectangle, as buttons and timelines show it.
void DrawKeyframe(QPainter* painter, const QRectF& rect, KeyState state, const QColor& colour);

// Any other sign, which fills the rectangle.
void DrawSign(QPainter* painter, const QRectF& rect, Sign sign, const QColor& colour);

}  // namespace glimmerhost
