// SPDX-License-Identifier: BSD-3-Clause
#include <cstring>

#include "hostframe/interfaces/colour.h"

namespace quantel {

const cColour cColour::kBlack = cColour::fromRGB(0.0F, 0.0F, 0.0F);
const cColour cColour::kWhite = cColour::fromRGB(1.0F, 1.0F, 1.0F);

cColour::cColour() : words{} {}

cColour cColour::fromRGB(float red, float green, float blue) {
  const float components[] = {red, green, blue};
  cColour colour;
  std::memcpy(colour.words, components, sizeof components);
  return colour;
}

// These colours are kept as red, green and blue, so there is nothing to convert.
cColour cColour::toRGB() const { return *this; }

}  // namespace quantel
