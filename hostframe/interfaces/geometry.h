// SPDX-License-Identifier: BSD-3-Clause
// Small values of the border, all passed and returned by value.
#pragma once

#include <cstdint>

namespace quantel {

// A size is width, then height; a ratio is first over second.
struct cSize2 {
  std::int32_t first;
  std::int32_t second;
};

struct cPoint2 {
  float x;
  float y;
};

// A layout cell in dialog calls; x, y, width, height in overlay drawing.
struct cRect4 {
  float first;
  float second;
  float third;
  float fourth;
};

static_assert(sizeof(cSize2) == 8 && sizeof(cPoint2) == 8 && sizeof(cRect4) == 16);

}  // namespace quantel
