// glimmerhost render: pictures through the effect, one or a shot of them.
#pragma once

#include <iosfwd>
#include <string>

#include "host/glimmerhost/colour_options.h"
#include "host/glimmerhost/run_options.h"
#include "host/render/shot_render.h"

namespace glimmerhost {

// Without a pixel aspect the file's own counts. Input, output and spread may be names of sequences.
struct RenderOptions : RunOptions {
  std::string input;
  std::string bits;  // 8, 16, or empty for the input's
  std::string range = "clip";
  ColourOptions colours;
  std::string frames;  // a list; empty for what the input's name or its folder says
  std::string chunk;   // K/N
  bool keepGoing = false;
  bool skipExisting = false;
  bool carryPsf = false;
  bool explain = false;
  bool dryRun = false;
  std::string progress = "auto";
  std::string manifest;    // a file; empty for none
  std::string saveParams;  // a file for what was used; empty for none
};

// What is the same for all frames. Throws UsageError, and what reading parameter files throws.
ShotSettings ParseSettings(const RenderOptions& options);

// Renders, or only tells what would be done. Returns the program's exit code. Throws Failure or
// UsageError; of a frame that failed there is no output, and nothing is left of one.
int RunRender(const RenderOptions& options, std::ostream& out);

}  // namespace glimmerhost
