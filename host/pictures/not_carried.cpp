// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/not_carried.h"

#include <algorithm>
#include <cstddef>

namespace glimmerhost {

NotCarried OneNotCarried(const std::string& what, const std::string& value,
                         const std::string& why) {
  return {what, what + (value.empty() ? "" : " " + value) + " is not carried: " + why};
}

NotCarried SomeNotCarried(const std::string& what, const std::string& why) {
  return {what, what + " are not carried: " + why};
}

NotCarried GrownNotCarried(int width, int height, int by, const std::string& format) {
  const auto size = [](int w, int h) { return std::to_string(w) + " x " + std::to_string(h); };
  const std::string corner = std::to_string(-by) + "," + std::to_string(-by);
  return OneNotCarried("the display window", size(width, height) + " at 0,0",
                       FormatLabel(format) +
                           " has no place for it; the output is the data window, " +
                           size(width + 2 * by, height + 2 * by) + " at " + corner);
}

NotCarried CutNotCarried(std::uint64_t count, const std::string& why) {
  return {"samples outside 0 to 1", std::to_string(count) + (count == 1 ? " sample" : " samples") +
                                        " outside 0 to 1" + (count == 1 ? " is" : " are") +
                                        " cut to that range: " + why};
}

std::string ListNames(const std::vector<std::string>& names) {
  constexpr std::size_t kMost = 8;
  const std::size_t shown = names.size() > kMost + 1 ? kMost : names.size();
  std::string list;
  for (std::size_t i = 0; i < shown; ++i) {
    list += (i > 0 ? ", " : "") + names[i];
  }
  if (shown < names.size()) {
    list += " and " + std::to_string(names.size() - shown) + " more";
  }
  return list;
}

std::string FormatLabel(const std::string& format) {
  if (format == "openexr") {
    return "OpenEXR";
  }
  std::string label = format;
  std::transform(label.begin(), label.end(), label.begin(), [](char c) {
    return c >= 'a' && c <= 'z' ? static_cast<char>(c - 'a' + 'A') : c;
  });
  return label;
}

}  // namespace glimmerhost
