// glimmerhost render: one picture through the effect.
#pragma once

#include <string>

#include "host/glimmerhost/render_settings.h"

namespace glimmerhost {

struct RenderOptions {
  std::string input;
  std::string output;
  TypedValues values;
  std::string spread;       // a picture file, or empty
  std::string pixelAspect;  // A:B, or empty for the file's own
  std::string alpha = "premultiplied";
  std::string bits;     // 8, 16, or empty for the input's
  std::string threads;  // a count, or empty for every processor
  bool overwrite = false;
  bool quiet = false;
  std::string module;  // a module file, or empty for the one beside the program
};

// Throws Failure or UsageError; there is no output then, and nothing is left of one.
void RunRender(const RenderOptions& options);

}  // namespace glimmerhost
