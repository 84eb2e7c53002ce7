// SPDX-License-Identifier: BSD-3-Clause
// ColourPath: what becomes of a file's colours on their way into a picture, and on their way out.
#pragma once

#include <memory>
#include <string>
#include <vector>

#include "host/pictures/picture.h"

namespace glimmerhost {

// From one colour space to another. Calls on several threads may go on at once.
class ColourTransform {
 public:
  ColourTransform() = default;
  virtual ~ColourTransform() = default;
  ColourTransform(const ColourTransform&) = delete;
  ColourTransform& operator=(const ColourTransform&) = delete;

  // Red, green, blue, one pixel after the other, in place. All are numbers, and finite.
  virtual void Apply(std::vector<float>* colours) const = 0;
};

// Files' colours come into the space that the effect works in before any range, and leave it after.
struct ColourPath {
  std::shared_ptr<const ColourTransform> in;   // null for files that are in that space
  std::shared_ptr<const ColourTransform> out;  // likewise
  bool sameSpace = false;  // outputs are in the inputs' space, which may be another
  std::string identity{};  // another wherever a colour may come out otherwise
};

// Transforms pixels of red, green, blue and, if there are four channels, alpha. A transform is
// for colours that are not multiplied by alpha: premultiplied ones are divided by it before and
// multiplied after. Where alpha is 0, black stays black, and light without a body is transformed
// as it is. A sample that is infinite or no number stays so, and counts as 0 for the others.
//   alpha  kNone for three channels
void TransformColours(const ColourTransform& transform, Alpha alpha, std::vector<float>* pixels);

}  // namespace glimmerhost
