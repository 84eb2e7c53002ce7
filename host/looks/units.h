// SPDX-License-Identifier: BSD-3-Clause
// Values with units, as they are typed on the command line.
#pragma once

#include <string>

#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {

enum class Unit { kPlain, kPercent, kPixels };

// A radius in the effect's own measure, a diameter as a part of the picture's width, and the unit
// that it was typed in.
struct TypedRadius {
  double part;
  Unit unit;
};

//   text   "40px" is a radius in pixels, "4%" a part of the width, a plain number the
//          measure itself
//   width  the picture's, in pixels
// Throws UsageError, which names the option.
TypedRadius ParseRadius(const std::string& option, const std::string& text, int width);

// In its unit: "40px".
std::string ShowRadius(const TypedRadius& radius, int width);

// A point as the effect counts it: fractions of width and height, y from the bottom.
struct Fractions {
  double x;
  double y;
};

//   text  "X,Y": each a fraction, a percentage, or pixels from the top left ("100px,50px")
// Throws UsageError, which names the option.
Fractions ParsePoint(const std::string& option, const std::string& text, int width, int height);

// A ratio of two whole numbers from 1 to 1000000, "16:15". Throws UsageError.
quantel::cSize2 ParseRatio(const std::string& option, const std::string& text);

// A size of whole numbers of pixels, from 1 to 32768, "1920x1080". Throws UsageError.
quantel::cSize2 ParseSize(const std::string& option, const std::string& text);

}  // namespace glimmerhost
