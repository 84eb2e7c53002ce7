// SPDX-License-Identifier: BSD-3-Clause
#include "tests/support/colour_recorder.h"

namespace lx_test {

std::vector<std::uint32_t>& RgbAsks() {
  static std::vector<std::uint32_t> asks;
  return asks;
}

}  // namespace lx_test

namespace quantel {

cColour cColour::toRGB() const {
  lx_test::RgbAsks().push_back(words[3]);
  return *this;
}

}  // namespace quantel
