// SPDX-License-Identifier: BSD-3-Clause
// The store's values over a shot: constant, or by keyframes.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/looks/keyframes.h"
#include "host/looks/look_layers.h"
#include "host/looks/page.h"

namespace glimmerhost {

class KeyframedValues {
 public:
  // The page's defaults, then layer by layer the options and what --set says, for pictures of
  // that size. Throws UsageError for a value that the page does not allow, and for times that do
  // not go with the span, unless another layer goes over them. Where the shot is so short that
  // several keyframes come to one time, the last of those written counts.
  KeyframedValues(const Page& page, const std::vector<LookLayer>& layers, int width, int height,
                  const ShotSpan& span);

  // The values of a frame, whatever frames are asked for before it.
  std::map<std::string, Value> At(int frame) const;

  // The same for a picture that has got so many pixels more on each side: radii are parts of its
  // larger width, and points parts of its larger sides.
  std::map<std::string, Value> AtGrown(int frame, int by) const;

  // How much of the effect a frame shows, 0 to 1.
  double MixAt(int frame) const;

  // Whether any value changes over the shot.
  bool IsAnimated() const;

 private:
  struct TimedValue {
    double time;
    Course course;
    Value value;
  };

  struct Track {
    Parameter parameter;
    std::vector<TimedValue> values;       // in order of time, no two at the same
    std::vector<KeyframeTime> written{};  // their times, until these are settled
    std::string name{};                   // of keyframes: where they come from, and their text
    std::string text{};

    void Settle(const ShotSpan& span);
    Value At(double time) const;
  };

  class Setter;

  int width_;
  int height_;
  std::map<std::string, Track> tracks_;
  Track mix_;
};

// The values for one picture of that size: the first of the shot that the look names, and where it
// names none, the only one.
std::map<std::string, Value> StillValues(const Page& page, const std::vector<LookLayer>& layers,
                                         int width, int height);

}  // namespace glimmerhost
