// SPDX-License-Identifier: BSD-3-Clause
// What a person may choose for an output, by its name's ending.
#pragma once

#include <string>
#include <vector>

namespace glimmerhost {

struct OutputChoices {
  std::string format;  // as people call it; empty for an ending that no format has
  std::vector<std::string> bits;
  std::vector<std::string> compressions;
  bool hasQuality = false;             // without a compression
  std::vector<std::string> qualityOf;  // the compressions that have one
};

// Asks the formats themselves, and may open the plug-in for pictures: not on a thread that must not
// wait. Never throws.
OutputChoices ChoicesFor(const std::string& output);

}  // namespace glimmerhost
