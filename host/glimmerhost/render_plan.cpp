#include "host/glimmerhost/render_plan.h"

#include <utility>

#include "host/looks/parameter_file.h"
#include "host/looks/units.h"
#include "host/pictures/alpha.h"
#include "host/support/failure.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

int ParseBits(const std::string& text) {
  if (text.empty()) {
    return 0;
  }
  if (text == "8" || text == "16") {
    return text == "8" ? 8 : 16;
  }
  throw MustBe("--bits", "8 or 16", text);
}

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
    refuse(options.bits == "8", "--bits 8", "-o");
  }
}

// All but the files.
//   look  what is decided beside the values of the store
RenderPlan PlanWithoutFiles(const RenderOptions& options, std::vector<LookLayer> layers,
                            const PictureLook& look) {
  CheckModuleOptions(options.engine, options.module);
  RenderPlan plan;
  ShotSettings& settings = plan.settings;
  settings.layers = std::move(layers);
  settings.premultiplied = ParsePremultiplied("--alpha", look.alpha);
  settings.bits = ParseBits(options.bits);
  settings.reading.range = RangeMapping::Parse(options.range);
  settings.reading.colours = ParseColours(options.colours);
  if (!look.pixelAspect.empty()) {
    settings.pixelAspect = ParseRatio("--pixel-aspect", look.pixelAspect);
  }
  settings.overwrite = options.overwrite;
  settings.skipExisting = options.skipExisting;
  settings.keepGoing = options.keepGoing;
  settings.carryPsf = options.carryPsf;
  plan.report = ShotReport::ParseForm(options.progress, options.quiet);
  plan.manifest = Utf8Path(options.manifest);
  plan.savedLook = Utf8Path(options.saveParams);
  plan.explain = options.explain;
  plan.dryRun = options.dryRun;
  return plan;
}

}  // namespace

RenderPlan PlanRender(const Page& page, const RenderOptions& options) {
  std::vector<LookLayer> layers = ReadLayers(page, options.look);
  const PictureLook look = PictureLookOf(page, layers);
  RenderPlan plan = PlanWithoutFiles(options, std::move(layers), look);
  CheckPipes(options);
  plan.shot = PlanShot({options.input,
                        options.output,
                        look.spread,
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
  if (!plan.dryRun) {
    plan.module = ChooseModule(options.engine, options.module);
  }
  return plan;
}

RenderPlan PlanSubmit(const Page& page, const RenderOptions& options) {
  std::vector<LookLayer> layers = ReadLayers(page, options.look);
  const PictureLook look = PictureLookOf(page, layers);
  RenderPlan plan = PlanWithoutFiles(options, std::move(layers), look);
  plan.shot = PlanShot({options.input, options.output, look.spread, options.frames, ""});
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
