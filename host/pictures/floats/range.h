// SPDX-License-Identifier: BSD-3-Clause
// RangeMapping: how the values of a floating-point file, which have no upper end, come into the
// 0 to 1 that the effect works on, and back.
#pragma once

#include <string>

namespace glimmerhost {

class RangeMapping {
 public:
  // 0 to 1 as they are.
  RangeMapping() = default;

  //   text  "clip"; "scale:MAX", in which 0 to MAX become 0 to 1 in proportion; or "log:MAX",
  //         in which they do by log2(1 + 64 v) / log2(1 + 64 MAX), which spends more of the
  //         effect's steps on the dark
  // Throws UsageError, which names --range.
  static RangeMapping Parse(const std::string& text);

  // The text that reads back as the same.
  std::string Text() const;
  // The values from one to a larger one, in proportion.
  static RangeMapping Span(float lowest, float highest);

  // Whether values come through as they are.
  bool IsPlain() const { return curve_ == Curve::kPlain; }

  // The smallest value that has a place, 0 unless it is a span's, and the largest.
  float Min() const { return min_; }
  float Max() const { return max_; }

  // 0 to 1. What is outside comes to the nearer end, what is no number to where 0 does.
  float ToUnit(float value) const;

  // The value that comes to unit, of 0 to 1. 0 is Min() exactly, and 1 is Max().
  float FromUnit(float unit) const;

 private:
  enum class Curve { kPlain, kScale, kLog, kSpan };

  Curve curve_ = Curve::kPlain;
  float min_ = 0.0F;
  float max_ = 1.0F;
};

}  // namespace glimmerhost
