// SPDX-License-Identifier: BSD-3-Clause
// ShotSpan: the frames that a shot has, whichever of them are rendered.
#pragma once

#include <optional>
#include <string>

namespace glimmerhost {

// Frames from minus this to this have a number: so many that sums and distances fit an int.
inline constexpr int kLargestFrame = 99999999;

// Either end is none where nobody knows it.
struct ShotSpan {
  std::optional<int> first;
  std::optional<int> last;

  bool IsKnown() const { return first && last; }

  // Whether a frame is not before the first nor behind the last, as far as they are known.
  bool Holds(int frame) const { return !(first && frame < *first) && !(last && frame > *last); }

  bool operator==(const ShotSpan&) const = default;
};

// "1001-1100", "-5-5", or one frame: "7".
//   name  how the text's origin is called in an error
// Throws UsageError, which names the text and what is allowed.
ShotSpan ParseShotSpan(const std::string& name, const std::string& text);

// The text of a span that is known: it reads back as the same.
std::string ShowSpan(const ShotSpan& span);

}  // namespace glimmerhost
