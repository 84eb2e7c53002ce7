// SPDX-License-Identifier: BSD-3-Clause
// cColour: the host's colour value, from the library Quantel_KernelMedia.
#pragma once

#include <cstdint>

#include "hostframe/interfaces/visibility.h"

namespace quantel {

// Five 32-bit words. Only a colour that toRGB answers may be looked into: its first
// three words are red, green and blue as floats from 0 to 1. The other two are the
// host's own.
// The two constants live in another library: use them at run time, never in a
// static initialiser.
class QTL_KERNELMEDIA cColour {
 public:
  cColour();
  cColour(const cColour&) = default;
  cColour& operator=(const cColour&) = default;

  static cColour fromRGB(float red, float green, float blue);
  cColour toRGB() const;

  static const cColour kBlack;
  static const cColour kWhite;

  std::uint32_t words[5];
};

static_assert(sizeof(cColour) == 20, "a colour crosses the border as five 32-bit words");

}  // namespace quantel
