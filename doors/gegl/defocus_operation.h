// SPDX-License-Identifier: BSD-3-Clause
// The operation glimmerblur:defocus.
//
//   input   the picture, premultiplied and linear: light is what an aperture spreads
//   aux     the picture that is the aperture, where the shape is one: all of it, its middle on the
//           point that it stands for, as much of each pixel as its red value says
//   output  as large as the input
//
// Every sample of the output depends on many of the input, and highlights on all of it: what is
// asked for is rendered whole, once, and kept.
#pragma once

#include <gegl-plugin.h>

namespace glimmerblur_gegl {

// Registers the operation's type with a module of GEGL's.
void RegisterDefocusOperation(GTypeModule* module);

}  // namespace glimmerblur_gegl
