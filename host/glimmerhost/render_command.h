// glimmerhost render: one picture through the effect.
#pragma once

#include <string>

#include "host/glimmerhost/run_options.h"

namespace glimmerhost {

// Without a pixel aspect the file's own counts.
struct RenderOptions : RunOptions {
  std::string input;
  std::string alpha = "premultiplied";
  std::string bits;  // 8, 16, or empty for the input's
};

// Throws Failure or UsageError; there is no output then, and nothing is left of one.
void RunRender(const RenderOptions& options);

}  // namespace glimmerhost
