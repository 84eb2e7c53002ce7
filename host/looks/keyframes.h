// SPDX-License-Identifier: BSD-3-Clause
// Values that change over a shot, as people write them: "0=50; 24~=60; -1=220".
#pragma once

#include <string>
#include <vector>

namespace glimmerhost {

// The frames that times of keyframes count from: 0 is the lowest, -1 the highest.
struct ShotSpan {
  int lowest = 0;
  int highest = 0;
  bool isOpen = false;  // nobody knows the highest
};

// How a value goes on from one keyframe to the next.
enum class Course {
  kLinear,  // =
  kSmooth,  // ~=, a cubic through the keyframes around, with their mean slopes
  kHeld,    // |=
};

struct KeyframeText {
  int time;  // in frames from the shot's first; a negative one counts from its end, -1 the last
  Course course;
  std::string value;
};

// Whether a text is one of keyframes; any other is a value for all frames.
bool HasKeyframes(const std::string& text);

// The keyframes in the order written.
//   name  how the text's origin is called in an error
// Throws UsageError, which names the text and what is allowed.
std::vector<KeyframeText> ParseKeyframes(const std::string& name, const std::string& text);

struct Keyframe {
  int time;  // from the shot's first frame
  Course course;
  double value;
};

// The value at a time. Before the first keyframe its value holds, behind the last one its.
//   keys  at least one, in order of time, no two at the same
double ValueAt(const std::vector<Keyframe>& keys, int time);

}  // namespace glimmerhost
