// SPDX-License-Identifier: BSD-3-Clause
// What render and submit are asked for, and the options that say it.
#pragma once

#include <string>
#include <vector>

#include "host/glimmerhost/colour_options.h"
#include "host/glimmerhost/option_set.h"
#include "host/glimmerhost/run_options.h"
#include "host/looks/page.h"
#include "host/pictures/coding.h"
#include "host/pictures/floats/range.h"
#include "host/render/shot_report.h"

namespace glimmerhost {

// Input, output and spread may be names of sequences. Texts are as they were typed.
struct RenderOptions : RunOptions {
  std::string input;
  Coding coding;  // of the output
  RangeMapping range;
  bool isRangeGiven = false;
  std::string precision;  // auto, float or 16; empty for what the other options imply
  bool centred = false;
  ColourOptions colours;
  std::vector<std::string> blurChannels;  // patterns
  std::string mask;                       // a picture; empty for none
  std::string frames;  // a list; empty for what the input's name or its folder says
  std::string chunk;   // K/N; for submit the most frames of a chunk, or empty
  bool grow = false;
  bool keepGoing = false;
  bool skipExisting = false;
  bool carryPsf = false;
  bool explain = false;
  bool dryRun = false;
  // --quiet goes over it, but not over JSON.
  ShotReport::Form report = ShotReport::ParseForm("auto");
  std::string manifest;    // a file; empty for none
  std::string saveParams;  // a file for what was used; empty for none
};

// All but --chunk and --engine, which the two commands mean differently.
void AddRenderOptions(OptionSet* options, const Page& page, RenderOptions* render);

inline constexpr const char* kShotGroup = "Shot";

}  // namespace glimmerhost
