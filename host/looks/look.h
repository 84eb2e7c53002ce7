// SPDX-License-Identifier: BSD-3-Clause
// Look: everything that decides what becomes of a frame, as it is typed. Look files hold it.
#pragma once

#include <map>
#include <string>
#include <vector>

#include "host/looks/page.h"

namespace glimmerhost {

// Texts of a look that are no parameters of the effect.
inline constexpr const char* kSpread = "spread";             // a picture file, or a sequence
inline constexpr const char* kAlpha = "alpha";               // premultiplied or as-is
inline constexpr const char* kMix = "mix";                   // 0 to 1, how much of the blur is seen
inline constexpr const char* kPixelAspect = "pixel-aspect";  // A:B
inline constexpr const char* kShot = "shot";                 // FIRST-LAST, for times of keyframes

struct Look {
  // By the names of options without their dashes. An empty text was not given, as one that is not
  // there. Each may be a value or keyframes.
  std::map<std::string, std::string> texts;
  std::vector<std::string> set;  // KEY=VALUE: parameters by their keys, over all texts

  std::string& operator[](const std::string& name) { return texts[name]; }

  // Empty if it was not given.
  const std::string& At(const std::string& name) const;

  bool operator==(const Look& other) const;
};

// A name that a look may have, and what it decides: keys of the store, or itself.
struct LookName {
  std::string name;
  std::vector<std::string> decides;
};

// Each before those that are more exact: the radius before the radius of a side.
std::vector<LookName> LookNames(const Page& page);

}  // namespace glimmerhost
