// glimmerhost psf: what a point of light becomes, as a picture to look at.
#pragma once

#include <string>

#include "host/glimmerhost/render_settings.h"

namespace glimmerhost {

struct PsfOptions {
  std::string output;
  TypedValues values;
  std::string spread;              // a picture file, or empty
  std::string size = "1920x1080";  // of the frame that the aperture is for
  std::string zoom;                // a count, or empty for what makes some 512 pixels
  std::string pixelAspect = "1:1";
  std::string threads;  // a count, or empty for every processor
  bool overwrite = false;
  bool quiet = false;
  std::string module;  // a module file, or empty for the one beside the program
};

// Renders one bright pixel through the module and writes what came of it: grey, the
// brightest spot white, the pixel itself in the middle, each pixel enlarged to a square.
// Throws Failure or UsageError; there is no output then.
void RunPsf(const PsfOptions& options);

}  // namespace glimmerhost
