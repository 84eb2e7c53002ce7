// SPDX-License-Identifier: BSD-3-Clause
// Where the parts of the timeline's tracks lie, in logical pixels.
//
//   |<- kNameWidth ->|<- kEndRoom ->first frame ... last frame<- kEndRoom ->|
#pragma once

namespace glimmerhost {

inline constexpr int kRulerHeight = 28;
inline constexpr int kRowHeight = 22;
inline constexpr int kLaneHeight = 64;  // of the selected row's curves, below the row
inline constexpr int kNameWidth = 120;
inline constexpr int kEndRoom = 36;       // half of the widest number of a frame
inline constexpr double kReach = 7.0;     // how near the mouse must be to a keyframe
inline constexpr double kKeyframe = 5.5;  // half of what one is wide

}  // namespace glimmerhost
