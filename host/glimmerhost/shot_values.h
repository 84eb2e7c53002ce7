// The store's values over a shot: constant, or by keyframes.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/glimmerhost/look_layers.h"
#include "host/glimmerhost/page.h"
#include "host/shots/keyframes.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

// The frames that times of keyframes count from: 0 is the lowest, -1 the highest.
struct ShotSpan {
  int lowest = 0;
  int highest = 0;
  bool isOpen = false;  // nobody knows the highest
};

inline ShotSpan SpanOf(const ShotPlan& plan) {
  return {plan.lowest, plan.highest, static_cast<bool>(plan.filesOf)};
}

class ShotValues {
 public:
  // The page's defaults, then layer by layer the options and what --set says, for pictures of
  // that size. Throws UsageError for a value that the page does not allow.
  ShotValues(const Page& page, const std::vector<LookLayer>& layers, int width, int height,
             const ShotSpan& span);

  // The same for what was typed. Throws what reading its files throws, too.
  ShotValues(const Page& page, const TypedValues& typed, int width, int height,
             const ShotSpan& span)
      : ShotValues(page, ReadLayers({typed, {}, {}, {}}), width, height, span) {}

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
inline std::map<std::string, Value> MakeStoreValues(const Page& page, const TypedValues& typed,
                                                    int width, int height) {
  return ShotValues(page, typed, width, height, {}).At(0);
}

}  // namespace glimmerhost
