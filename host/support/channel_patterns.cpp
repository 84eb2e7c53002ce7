// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/channel_patterns.h"

#include <algorithm>
#include <cstddef>
#include <sstream>

#include "host/support/failure.h"

namespace glimmerhost {

std::vector<std::string> ParseChannelPatterns(const std::string& text) {
  std::vector<std::string> patterns;
  std::istringstream rest(text + ",");
  for (std::string pattern; std::getline(rest, pattern, ',');) {
    if (pattern.empty()) {
      throw MustBe("--blur-channels", "names of channels with commas between them (diffuse.*,Z)",
                   text);
    }
    patterns.push_back(pattern);
  }
  return patterns;
}

// Goes back to the last star alone: one before it can take no letters that the last could not.
bool MatchesPattern(std::string_view pattern, std::string_view name) {
  std::size_t at = 0;
  std::size_t star = std::string_view::npos;
  std::size_t taken = 0;  // the first letter that the star does not stand for
  std::size_t letter = 0;
  while (letter < name.size()) {
    if (at < pattern.size() && pattern[at] == '*') {
      star = at++;
      taken = letter;
    } else if (at < pattern.size() && (pattern[at] == '?' || pattern[at] == name[letter])) {
      ++at;
      ++letter;
    } else if (star != std::string_view::npos) {
      at = star + 1;
      letter = ++taken;
    } else {
      return false;
    }
  }
  return pattern.find_first_not_of('*', at) == std::string_view::npos;
}

bool MatchesAny(const std::vector<std::string>& patterns, std::string_view name) {
  return std::any_of(patterns.begin(), patterns.end(),
                     [name](const std::string& pattern) { return MatchesPattern(pattern, name); });
}

}  // namespace glimmerhost
