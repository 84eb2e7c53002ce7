// Look: everything that decides what becomes of a frame, as it is typed. Parameter files hold
// looks.
#pragma once

#include <span>
#include <string>
#include <variant>
#include <vector>

#include "host/looks/render_settings.h"

namespace glimmerhost {

// An empty text was not given.
struct Look {
  TypedValues values;
  std::string spread;       // a picture file, or a sequence of them
  std::string pixelAspect;  // A:B
  std::string alpha;        // premultiplied or as-is

  bool operator==(const Look&) const = default;
};

// One of a look's texts.
struct LookName {
  const char* name;  // of its option without dashes, and in files
  std::variant<std::string TypedValues::*, std::string Look::*> text;
  std::vector<std::string> decides;  // keys of the store, or itself
};

// All of them, each before those that are more exact: the radius before the radius of a side.
std::span<const LookName> LookNames();

std::string& TextOf(const LookName& name, Look* look);
const std::string& TextOf(const LookName& name, const Look& look);

}  // namespace glimmerhost
