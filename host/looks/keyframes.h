// SPDX-License-Identifier: BSD-3-Clause
// Values that change over a shot, as people write them: "1001=50; first+24~=60; last=220".
#pragma once

#include <string>
#include <vector>

#include "host/looks/shot_span.h"

namespace glimmerhost {

// How a value goes on from one keyframe to the next.
enum class Course {
  kLinear,  // =
  kSmooth,  // ~=, a cubic through the keyframes around, which never leaves what lies between two
  kHeld,    // |=
};

// A time belongs to the shot, and not to the frames that happen to be rendered.
struct KeyframeTime {
  enum class From {
    kZero,   // 1001: the frame of that number
    kFirst,  // first, first+12
    kLast,   // last, last-12
    kPart,   // 25% of the way from the first frame to the last, and not rounded to a frame
  };

  From from = From::kZero;
  double number = 0.0;  // frames from there on, or percent
  std::string text;     // as it was written

  // Whether the two are the same time in every shot. 0% is the first frame, and 100% the last.
  bool IsAs(const KeyframeTime& other) const;
};

struct KeyframeText {
  KeyframeTime time;
  Course course;
  std::string value;
};

// Whether a text is one of keyframes; any other is a value for all frames.
bool HasKeyframes(const std::string& text);

// The keyframes in the order written.
//   name  how the text's origin is called in an error
// Throws UsageError, which names the text and what is allowed: also for two at the same time.
std::vector<KeyframeText> ParseKeyframes(const std::string& name, const std::string& text);

// The frame that a time is, which may lie between two or outside of the shot.
//   name, text  the origin of the keyframe and its whole text, for an error
// Throws UsageError if the span does not say what the time counts from; and for a frame of 0 or
// below that the shot has not.
double FrameOf(const KeyframeTime& time, const ShotSpan& span, const std::string& name,
               const std::string& text);

struct Keyframe {
  double time;  // a frame
  Course course;
  double value;
};

// The value at a time. Before the first keyframe its value holds, behind the last one its.
//   keys  at least one, in order of time, no two at the same
double ValueAt(const std::vector<Keyframe>& keys, double time);

}  // namespace glimmerhost
