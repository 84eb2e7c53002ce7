// SPDX-License-Identifier: BSD-3-Clause
// Patterns for the names of channels: "diffuse.*,Z".
#pragma once

#include <string>
#include <string_view>
#include <vector>

namespace glimmerhost {

// The patterns between the commas. Throws UsageError, which names --blur-channels, for an empty
// one.
std::vector<std::string> ParseChannelPatterns(const std::string& text);

// Whether a name is what a pattern says: * stands for any letters, ? for one, all others for
// themselves.
bool MatchesPattern(std::string_view pattern, std::string_view name);

// Whether it is what any of them says.
bool MatchesAny(const std::vector<std::string>& patterns, std::string_view name);

}  // namespace glimmerhost
