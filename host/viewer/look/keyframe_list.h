// SPDX-License-Identifier: BSD-3-Clause
// KeyframeList: the keyframes of one text, edited one by one. What a person wrote of those that are
// not edited stays as it is, to the letter: "first=4px; 25% ~= 3%; last=9px" may be a look for any
// shot.
#pragma once

#include <string>
#include <vector>

#include "host/looks/keyframes.h"
#include "host/looks/shot_span.h"

namespace glimmerhost {

// A keyframe and where it lies in the shot.
struct PlacedKeyframe {
  KeyframeText key;
  double frame;         // may lie between two, or outside of the shot
  std::string written;  // as it stands in the text
};

class KeyframeList {
 public:
  //   name  how the text's origin is called in an error
  //   text  of keyframes; empty for none
  // Throws UsageError as ParseKeyframes and FrameOf do.
  KeyframeList(const std::string& name, const std::string& text, const ShotSpan& span);

  // In the order written.
  const std::vector<PlacedKeyframe>& All() const { return keys_; }

  // In order of time, and of several at one frame the one that counts: the last of those written.
  std::vector<PlacedKeyframe> InTime() const;

  // Null if no keyframe is at that frame.
  const PlacedKeyframe* At(double frame) const;

  // Changes the value of the keyframe at a frame, or adds one there, which goes on as the part does
  // that it lies in.
  void Set(int frame, const std::string& value);

  // These leave frames without a keyframe alone.
  void Remove(double frame);
  void SetCourse(double frame, Course course);

  // Moves the keyframes at some frames by so many, and those that others are moved onto give way.
  // What counts from an end of the shot goes on doing so; one between two frames comes to one.
  void Move(const std::vector<double>& frames, int by);

  // The keyframes as a text; empty for none.
  std::string Text() const;

 private:
  std::vector<PlacedKeyframe> keys_;
};

}  // namespace glimmerhost
