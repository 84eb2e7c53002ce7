// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/run_options.h"

#include <algorithm>

#include "host/looks/keys.h"
#include "host/looks/presets.h"
#include "host/module/module_choice.h"
#include "host/pictures/picture_formats.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

// For completion. Whoever names a preset learns that there are none.
std::vector<std::string> PresetNames() {
  std::vector<std::string> names;
  try {
    for (const Preset& preset : Presets()) {
      names.push_back(preset.name);
    }
  } catch (const Failure&) {
    names.clear();
  }
  return names;
}

}  // namespace

void AddOutput(OptionSet* options, RunOptions* run) {
  options->NeededValue(
      "-o,--output", &run->output,
      {kFilesGroup, "FILE",
       std::string("Where the result goes; its ending says the format: ") + kWritableEndings});
}

void AddLook(OptionSet* options, const Page& page, bool highlights, RunOptions* run) {
  for (const PageOption& option : page.Options()) {
    if (!highlights && !option.keys.empty() &&
        std::none_of(option.keys.begin(), option.keys.end(), ShapesAperture)) {
      continue;
    }
    std::string* const value = &run->look[option.name];
    if (option.isSwitch) {
      options->Switch("--" + option.name, value, option.group, option.help);
    } else {
      options->Value("--" + option.name, value,
                     {option.group, option.value, option.help, option.choices});
    }
  }
}

// Each over those before it.
void AddLookFiles(OptionSet* options, RunOptions* run) {
  options->Value(
      "--preset", &run->look.preset,
      {kLookGroup, "NAME", "A look that comes with the program; glimmerhost presets lists them",
       PresetNames()});
  options->Value("--params", &run->look.file,
                 {kLookGroup, "FILE",
                  "A look file, over the preset: TOML, or JSON if its name ends in .json. Names in "
                  "it are options without dashes (shape = \"image\"). Options go over both"});
  options->Values("--set", &run->look.set,
                  {kLookGroup, "KEY=VALUE",
                   "Any parameter by its key in the store, over everything else; glimmerhost info "
                   "lists them. May be given more than once"});
}

void AddPixelAspect(OptionSet* options, const std::string& otherwise, RunOptions* run) {
  options->Value(
      std::string("--") + kPixelAspect, &run->look[kPixelAspect],
      {kPixelsGroup, "A:B", "The pixel aspect to work with (default: " + otherwise + ")"});
}

void AddThreads(OptionSet* options, std::string* threads) {
  options->Value(
      "--threads", threads,
      {kRunningGroup, "COUNT",
       "Processors to work on (default: all that the process may run on; more than these "
       "are all of them)"});
}

void AddEngine(OptionSet* options, std::string* engine) {
  options->Value("--engine", engine,
                 {kRunningGroup, "NAME",
                  "What the effect transforms by: " + EngineNames() + " (default " +
                      kDefaultEngine + "); glimmerhost info says what they are",
                  EngineList()});
}

void AddModule(OptionSet* options, std::string* module) {
  options->Value("--module", module,
                 {kRunningGroup, "FILE", "Another module file, which brings its own engine"});
}

void AddRunning(OptionSet* options, RunOptions* run) {
  options->Switch("--overwrite", &run->overwrite, kFilesGroup, "Replace an existing output");
  options->Switch("--quiet", &run->quiet, kRunningGroup, "No progress line");
  AddModule(options, &run->module);
}

}  // namespace glimmerhost
