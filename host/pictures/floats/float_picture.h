// SPDX-License-Identifier: BSD-3-Clause
// Pictures whose samples are floats: into them, out of them, and into files.
#pragma once

#include <cstdint>
#include <vector>

#include "host/pictures/picture.h"

namespace glimmerhost {

// A picture of 16 bits as the same of floats. One of floats is left as it is.
void MakeFloat(Picture* picture);

// The same of 16 bits, cut to 0 to 1. Layers are left out.
//   cut  receives how many samples were further outside than rounding comes
Picture Quantised(const Picture& picture, std::uint64_t* cut);

// What goes into a file of 1 to 4 channels of floats, from either kind of picture: one colour is
// the mean of three. Of 16 bits come the values that the picture's range says.
std::vector<float> GatherFloats(const Picture& picture, int channels);

// The same of some rows.
std::vector<float> GatherFloatRows(const Picture& picture, int channels, int firstRow, int rows);

// What is outside 0 to 1 by more than rounding, which is a step of 10 bits.
bool IsCutToUnit(float value);

// Cuts values to what half floats hold; how many that were.
std::uint64_t CutToHalf(std::vector<float>* values);

}  // namespace glimmerhost
