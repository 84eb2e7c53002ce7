// SPDX-License-Identifier: BSD-3-Clause
// What stands over the picture: a crosshair and rings, to be dragged.
//
//   a drawn aperture    a crosshair on the picture's middle, the outline of the aperture around it,
//                       and a handle on the end of each radius
//   one of a picture    a crosshair on the middle of what is cut out of it, and a ring on each of
//   its
//                       two radii; the outer one is dashed. Nothing for a whole picture
#pragma once

#include "doors/openfx/host.h"

namespace lx::openfx {

extern "C" {

// An entry for each way to draw.
ofx::Status OverlayOfDrawSuite(const char* action, const void* handle, ofx::PropertySet* in,
                               ofx::PropertySet* out);
ofx::Status OverlayOfOpenGl(const char* action, const void* handle, ofx::PropertySet* in,
                            ofx::PropertySet* out);
}

// Those that a host has not had destroyed.
void DropOverlays();

}  // namespace lx::openfx
