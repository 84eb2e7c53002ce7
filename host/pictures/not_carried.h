// SPDX-License-Identifier: BSD-3-Clause
// What a file says or holds and its successor does not.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

namespace glimmerhost {

struct NotCarried {
  // The same for each frame of a shot: "timecode", or "channels Z, N.X".
  std::string what;
  // For a person: "timecode 01:00:00:00 is not carried: PNG has no place for it".
  std::string line;

  bool operator==(const NotCarried&) const = default;
};

// The sentence for one thing.
//   value  this file's own, or empty
//   why    "PNG has no place for it"
NotCarried OneNotCarried(const std::string& what, const std::string& value, const std::string& why);

// The same for several.
NotCarried SomeNotCarried(const std::string& what, const std::string& why);

// Of a picture that was grown for a format without windows.
//   width, height  of what was read
//   by             pixels that each side has got
NotCarried GrownNotCarried(int width, int height, int by, const std::string& format);

// Of floats that came into whole numbers.
//   count  samples that were outside 0 to 1
//   why    "PNG has no place beyond"
NotCarried CutNotCarried(std::uint64_t count, const std::string& why);

// "a, b and 3 more": names in their order, as many as a line can bear.
std::string ListNames(const std::vector<std::string>& names);

// A format of this program as people write it: "PNG", "OpenEXR".
std::string FormatLabel(const std::string& format);

}  // namespace glimmerhost
