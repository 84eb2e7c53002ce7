// The nearest of some names to a mistyped one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace glimmerhost {

// The name that takes the fewest letters changed, added or taken away, with large and small
// ones alike; the first of several.
//   names  at least one
std::string Nearest(std::string_view typed, const std::vector<std::string>& names);

}  // namespace glimmerhost
