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

  // Whether values come through as they are.
  bool IsPlain() const { return curve_ == Curve::kPlain; }

  // The largest value that has a place; 0 is the smallest.
  float Max() const { return max_; }

  // 0 to 1. What is outside comes to the nearer end, what is no number to 0.
  float ToUnit(float value) const;

  // The value that comes to unit, of 0 to 1. Black is 0 exactly, and 1 is Max().
  float FromUnit(float unit) const;

 private:
  enum class Curve { kPlain, kScale, kLog };

  Curve curve_ = Curve::kPlain;
  float max_ = 1.0F;
};

}  // namespace glimmerhost
