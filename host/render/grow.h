// SPDX-License-Identifier: BSD-3-Clause
// A larger canvas, with room for what the effect spreads beyond the picture's edges.
#pragma once

#include "host/looks/keyframed_values.h"
#include "host/looks/keyframes.h"
#include "host/pictures/picture.h"

namespace glimmerhost {

// How many pixels each side of a picture needs so that no frame of the shot reaches beyond: as far
// as the largest aperture does. The same for every frame, whichever of them are rendered.
//   values  of a picture of that width
// Throws UsageError where values move and nobody knows the end of the shot.
int GrowthOf(const KeyframedValues& values, const ShotSpan& span, int width);

// Puts so many pixels of transparent black around it. The picture remembers that.
void GrowPicture(int by, Picture* picture);

}  // namespace glimmerhost
