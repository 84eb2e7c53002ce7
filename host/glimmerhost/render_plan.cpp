// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/render_plan.h"

#include <algorithm>

#include "host/looks/idle_options.h"
#include "host/looks/parameter_file.h"
#include "host/looks/units.h"
#include "host/pictures/alpha.h"
#include "host/support/failure.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

// What cannot be done where pictures come one after another and are gone then.
void CheckPipes(const RenderOptions& options) {
  const auto refuse = [](bool given, const char* option, const char* where) {
    if (given) {
      throw UsageError(std::string(option) + " needs a file as " + where + ", not a pipe (-)");
    }
  };
  if (options.input == kPipe) {
    refuse(options.explain, "--explain", "INPUT");
    refuse(options.dryRun, "--dry-run", "INPUT");
  }
  if (options.output == kPipe) {
    refuse(options.skipExisting, "--skip-existing", "-o");
    // A gap would give all frames behind it other numbers.
    refuse(options.keepGoing, "--keep-going", "-o");
    refuse(!options.manifest.empty(), "--manifest", "-o");
    refuse(options.bits == 8, "--bits 8", "-o");
  }
}

// What looks and colour spaces say, too.
ShotSettings SettingsOf(const RenderOptions& options, const ReadLook& read) {
  ShotSettings settings;
  settings.layers = read.layers;
  settings.premultiplied = ParsePremultiplied("--alpha", read.pictures.alpha);
  if (!read.pictures.pixelAspect.empty()) {
    settings.pixelAspect = ParseRatio("--pixel-aspect", read.pictures.pixelAspect);
  }
  settings.reading.colours = read.colours;
  settings.reading.range = options.range;
  settings.bits = options.bits;
  settings.overwrite = options.overwrite;
  settings.skipExisting = options.skipExisting;
  settings.keepGoing = options.keepGoing;
  settings.carryPsf = options.carryPsf;
  return settings;
}

// Who asks for objects reads them with a program, which would wait for frames that are done.
ShotReport::Form FormOf(const RenderOptions& options) {
  return options.quiet && options.report != ShotReport::Form::kJson ? ShotReport::Form::kQuiet
                                                                    : options.report;
}

// All but files and the module.
RenderPlan PlanOf(const RenderOptions& options, const ReadLook& read) {
  RenderPlan plan;
  plan.settings = SettingsOf(options, read);
  plan.report = FormOf(options);
  plan.manifest = Utf8Path(options.manifest);
  plan.savedLook = Utf8Path(options.saveParams);
  plan.remarks = read.idle;
  plan.explain = options.explain;
  plan.dryRun = options.dryRun;
  return plan;
}

}  // namespace

ReadLook ReadLookOf(const Page& page, const RenderOptions& options) {
  ReadLook read;
  read.layers = ReadLayers(page, options.look);
  read.pictures = PictureLookOf(page, read.layers);
  read.idle = IdleOptions(page, read.layers);
  const std::vector<Shape> shapes = ShapesOf(page, read.layers);
  if (std::find(shapes.begin(), shapes.end(), Shape::kImage) == shapes.end()) {
    read.pictures.spread.clear();
  }
  read.colours = ParseColours(options.colours);
  return read;
}

RenderPlan PlanRender(const RenderOptions& options, const ReadLook& read) {
  CheckPipes(options);
  RenderPlan plan = PlanOf(options, read);
  plan.shot = PlanShot({options.input,
                        options.output,
                        read.pictures.spread,
                        options.frames,
                        options.chunk,
                        {{"--manifest", options.manifest, true},
                         {"--save-params", options.saveParams, true},
                         {"--params", options.look.file, false},
                         {"--module", options.module, false}}});
  if (plan.shot.isInPlace && options.skipExisting) {
    throw UsageError("--skip-existing cannot be used where -o is INPUT: of " + options.output +
                     " every frame exists");
  }
  plan.module = ChooseModule(options.engine, options.module);
  return plan;
}

RenderPlan PlanSubmit(const RenderOptions& options, const ReadLook& read) {
  RenderPlan plan = PlanOf(options, read);
  plan.shot = PlanShot({options.input, options.output, read.pictures.spread, options.frames, ""});
  plan.module = ChooseModule(options.engine, options.module);
  return plan;
}

void SaveLook(const Page& page, const RenderPlan& plan) {
  if (!plan.savedLook.empty()) {
    SaveParameters(page, plan.savedLook, UsedLook(page, plan.settings.layers),
                   plan.settings.overwrite);
  }
}

}  // namespace glimmerhost
