// What a render is asked for, from the typed options to the values of the store.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/looks/page.h"

namespace glimmerhost {

// Options as they were typed; an empty text is an option that was not given. Each may be a value
// or keyframes.
struct TypedValues {
  std::string preset;  // its name
  std::string file;    // a parameter file, whose values go over the preset's, and these over both
  std::string shape;
  std::string radius;
  std::string radiusX;
  std::string radiusY;
  std::string match;
  std::string sides;
  std::string rotation;
  std::string emphasis;
  std::string emphAlpha;
  std::string center;
  std::string radiusPsf1;
  std::string radiusPsf2;
  std::vector<std::string> set;  // KEY=VALUE

  bool operator==(const TypedValues&) const = default;
};

}  // namespace glimmerhost
