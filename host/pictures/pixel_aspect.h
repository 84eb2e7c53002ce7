// SPDX-License-Identifier: BSD-3-Clause
// Pixel aspects: files hold a number, the effect wants two whole ones.
#pragma once

#include "hostframe/interfaces/geometry.h"

namespace glimmerhost {

// The nearest ratio of whole numbers, 1:1 for a value that is no ratio.
quantel::cSize2 NearestRatio(double value);

}  // namespace glimmerhost
