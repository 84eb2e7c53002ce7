// SPDX-License-Identifier: BSD-3-Clause
// Which colours are asked for their red, green and blue.
//
// A program that links test_colour before the host's library has the toRGB of the recorder,
// which answers as that library does.
#pragma once

#include <cstdint>
#include <vector>

#include "hostframe/interfaces/colour.h"

namespace lx_test {

// The fourth word of each colour that was asked, in the order of asking. It is the host's
// own, so a test tells its colours by it. One thread.
QTL_KERNELMEDIA std::vector<std::uint32_t>& RgbAsks();

}  // namespace lx_test
