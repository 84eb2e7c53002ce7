// glimmerhost psf: what a point of light becomes, as a picture to look at.
#pragma once

#include <string>

#include "host/glimmerhost/run_options.h"

namespace glimmerhost {

// Without a pixel aspect it is 1:1.
struct PsfOptions : RunOptions {
  std::string size = "1920x1080";  // of the frame that the aperture is for
  std::string zoom;                // a count, or empty for what makes some 512 pixels
};

// Renders one bright pixel through the module and writes what came of it: grey, the
// brightest spot white, the pixel itself in the middle, each pixel enlarged to a square.
// Throws Failure or UsageError; there is no output then.
void RunPsf(const PsfOptions& options);

}  // namespace glimmerhost
