// SPDX-License-Identifier: BSD-3-Clause
// The nearest of some names to a mistyped one.
#pragma once

#include <string>
#include <string_view>
#include <vector>

#include "host/support/failure.h"

namespace glimmerhost {

// The name that takes the fewest letters changed, added or taken away, with large and small
// ones alike; the first of several.
//   names  at least one
std::string Nearest(std::string_view typed, const std::vector<std::string>& names);

// 'unknown preset "citylights"; did you mean "city-lights"?' Without the question where none of the
// names is near.
//   what  the kind of name: "preset"
UsageError UnknownName(const std::string& what, const std::string& typed,
                       const std::vector<std::string>& names);

}  // namespace glimmerhost
