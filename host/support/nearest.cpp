// SPDX-License-Identifier: BSD-3-Clause
#include "host/support/nearest.h"

#include <algorithm>
#include <cstddef>
#include <numeric>

#include "host/support/text.h"

namespace glimmerhost {
namespace {

char Lower(char c) { return c >= 'A' && c <= 'Z' ? static_cast<char>(c - 'A' + 'a') : c; }

// How many letters must be changed, added or taken away to turn one text into another, large
// and small ones being alike.
std::size_t EditDistance(std::string_view a, std::string_view b) {
  std::vector<std::size_t> row(b.size() + 1);
  std::iota(row.begin(), row.end(), std::size_t{0});
  for (std::size_t i = 1; i <= a.size(); ++i) {
    std::size_t diagonal = row[0];
    row[0] = i;
    for (std::size_t j = 1; j <= b.size(); ++j) {
      const std::size_t above = row[j];
      row[j] = std::min(
          {above + 1, row[j - 1] + 1, diagonal + (Lower(a[i - 1]) == Lower(b[j - 1]) ? 0U : 1U)});
      diagonal = above;
    }
  }
  return row[b.size()];
}

}  // namespace

std::string Nearest(std::string_view typed, const std::vector<std::string>& names) {
  return *std::min_element(names.begin(), names.end(),
                           [typed](const std::string& a, const std::string& b) {
                             return EditDistance(typed, a) < EditDistance(typed, b);
                           });
}

UsageError UnknownName(const std::string& what, const std::string& typed,
                       const std::vector<std::string>& names) {
  const std::string unknown = "unknown " + what + " \"" + OneLine(typed) + "\"";
  const std::string nearest = Nearest(typed, names);
  const std::size_t farthest = std::max<std::size_t>(2, typed.size() / 2);
  return UsageError(EditDistance(typed, nearest) > farthest
                        ? unknown
                        : unknown + "; did you mean \"" + nearest + "\"?");
}

}  // namespace glimmerhost
