// SPDX-License-Identifier: BSD-3-Clause
// RenderPlan: all that was typed, turned once into what is done. Behind it nobody reads options.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/films/film.h"
#include "host/glimmerhost/render_options.h"
#include "host/looks/look_layers.h"
#include "host/looks/page.h"
#include "host/looks/timed_texts.h"
#include "host/module/module_choice.h"
#include "host/render/shot_render.h"
#include "host/render/shot_report.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

struct RenderPlan {
  ShotPlan shot;          // which files; those of a film are a pipe's
  ShotSettings settings;  // which values, and how files are read and written
  ShotReport::Form report = ShotReport::Form::kLines;
  ModuleChoice module{};
  std::optional<Film> film;          // INPUT, where it is one
  std::filesystem::path filmOutput;  // -o, where it is one; empty for none
  std::filesystem::path manifest;    // empty for none
  std::filesystem::path savedLook;   // a file for the look that is used; empty for none
  std::vector<std::string> remarks;  // of the whole shot, a line each
  bool explain = false;              // only tell what would be done
  bool dryRun = false;               // only list the files
};

// What the files behind the options say: presets, look files and colour configurations.
struct ReadLook {
  std::vector<LookLayer> layers;
  PictureLook pictures;                       // without a spread that no shape has a use for
  std::vector<std::string> idle;              // a line for each option that changes nothing
  std::vector<TimedText> timed;               // what times count in the shot
  std::optional<GivenSpan> shot;              // as it was given; none for INPUT's
  std::shared_ptr<const ColourPath> colours;  // null for samples as they are
};

// Throws what reading these files throws.
ReadLook ReadLookOf(const Page& page, const RenderOptions& options);

// For render. Throws UsageError, and what listing frames and choosing a module throws.
RenderPlan PlanRender(const RenderOptions& options, const ReadLook& read);

// For submit, whose chunks plan their own part: the whole shot, and no file beside it.
RenderPlan PlanSubmit(const RenderOptions& options, const ReadLook& read);

// Says the remarks of a plan that nobody carries out, on stderr.
void SayRemarks(const RenderPlan& plan);

// Writes the look where that was asked for. Throws Failure, and UsageError for the file's name.
void SaveLook(const Page& page, const RenderPlan& plan);

}  // namespace glimmerhost
