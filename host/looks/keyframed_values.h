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
  // that size. Throws UsageError for a value that the page does not allow.
  KeyframedValues(const Page& page, const std::vector<LookLayer>& layers, int width, int height,
                  const ShotSpan& span);

  // The values of a frame, whatever frames are asked for before it.
  std::map<std::string, Value> At(int frame) const;

  // Whether any value changes over the shot.
  bool IsAnimated() const;

 private:
  struct TimedValue {
    int time;
    Course course;
    Value value;
  };

  struct Track {
    Parameter parameter;
    std::vector<TimedValue> values;

    Value At(int time) const;
  };

  class Setter;

  ShotSpan span_;
  std::map<std::string, Track> tracks_;
};

// The values for one picture of that size, which is the first of its shot and its last.
inline std::map<std::string, Value> StillValues(const Page& page,
                                                const std::vector<LookLayer>& layers, int width,
                                                int height) {
  return KeyframedValues(page, layers, width, height, {}).At(0);
}

}  // namespace glimmerhost
