// SPDX-License-Identifier: BSD-3-Clause
// What every command that renders is asked for, and the options that say it.
#pragma once

#include <string>

#include "host/glimmerhost/option_set.h"
#include "host/looks/look_layers.h"
#include "host/looks/page.h"

namespace glimmerhost {

// An empty text is an option that was not given.
struct RunOptions {
  TypedLook look;
  std::string output;
  std::string threads;  // a count; empty for every processor
  bool overwrite = false;
  bool quiet = false;
  std::string engine;  // its name; empty for the default
  std::string module;  // a module file, in the place of an engine; empty for none
};

// Groups of options that several commands have.
inline constexpr const char* kFilesGroup = "Files";
inline constexpr const char* kLookGroup = "Looks from files, and parameters by their keys";
inline constexpr const char* kPixelsGroup = "Pixels";
inline constexpr const char* kRunningGroup = "Running";

void AddOutput(OptionSet* options, RunOptions* run);

// What the page lists of the look.
//   highlights  whether what is done to the highlights belongs to the command
void AddLook(OptionSet* options, const Page& page, bool highlights, RunOptions* run);

// Presets, look files and parameters by their keys.
void AddLookFiles(OptionSet* options, RunOptions* run);

//   otherwise  what counts where it is not given
void AddPixelAspect(OptionSet* options, const std::string& otherwise, RunOptions* run);

void AddThreads(OptionSet* options, std::string* threads);
void AddEngine(OptionSet* options, std::string* engine);
void AddModule(OptionSet* options, std::string* module);

// --overwrite, --quiet and --module.
void AddRunning(OptionSet* options, RunOptions* run);

}  // namespace glimmerhost
