#include "host/glimmerhost/render_command.h"

#include <optional>

#include "host/glimmerhost/processors.h"
#include "host/looks/look_layers.h"
#include "host/looks/page_file.h"
#include "host/looks/parameter_file.h"
#include "host/looks/units.h"
#include "host/module/effect_module.h"
#include "host/module/module_choice.h"
#include "host/pictures/alpha.h"
#include "host/render/explain.h"
#include "host/render/shot_report.h"
#include "host/shots/file_hash.h"
#include "host/shots/manifest.h"
#include "host/shots/shot_plan.h"
#include "host/support/failure.h"
#include "host/support/system.h"
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
  throw UsageError("--bits " + text + ": allowed is 8 or 16");
}

// What cannot be done where pictures come one after another and are gone then.
void CheckPipes(const RenderOptions& options) {
  const auto refuse = [](bool given, const char* option, const char* where) {
    if (given) {
      throw UsageError(std::string(option) + ": allowed where " + where +
                       " is a file, not a pipe (-)");
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

}  // namespace

ShotSettings ParseSettings(const RenderOptions& options) {
  CheckModuleOptions(options.engine, options.module);
  ShotSettings settings;
  settings.layers = ReadLayers(options);
  settings.premultiplied = ParsePremultiplied("--alpha", options.alpha);
  settings.bits = ParseBits(options.bits);
  settings.reading.range = RangeMapping::Parse(options.range);
  settings.reading.colours = ParseColours(options.colours);
  if (!options.pixelAspect.empty()) {
    settings.pixelAspect = ParseRatio("--pixel-aspect", options.pixelAspect);
  }
  settings.overwrite = options.overwrite;
  settings.skipExisting = options.skipExisting;
  settings.keepGoing = options.keepGoing;
  settings.carryPsf = options.carryPsf;
  return settings;
}

int RunRender(const RenderOptions& options, std::ostream& out) {
  ShotSettings settings = ParseSettings(options);
  const ShotReport::Form form = ShotReport::ParseForm(options.progress, options.quiet);
  CheckPipes(options);
  const ShotPlan plan = PlanShot({options.input,
                                  options.output,
                                  options.spread,
                                  options.frames,
                                  options.chunk,
                                  {{"--manifest", options.manifest, true},
                                   {"--save-params", options.saveParams, true},
                                   {"--params", options.values.file, false},
                                   {"--module", options.module, false}}});
  if (plan.isInPlace && options.skipExisting) {
    throw UsageError("--skip-existing: allowed where -o is not INPUT; of " + options.output +
                     " every frame is there");
  }
  if (options.dryRun) {
    ListFiles(plan, out);
    return kExitDone;
  }
  NarrowProcessors(options.threads);
  const Page page = LoadPage();
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  if (options.explain) {
    Explain(*choice.engine, page, settings, plan, out);
    return kExitDone;
  }
  if (!options.saveParams.empty()) {
    SaveParameters(Utf8Path(options.saveParams), UsedLook(page, settings.layers),
                   options.overwrite);
  }
  UseBinaryStreams();
  ShotReport report(form, plan.files.size(), plan.isShot);
  {
    const EffectModule module(choice);
    std::optional<Manifest> manifest;
    if (!options.manifest.empty()) {
      settings.versions = {{"glimmerhost", GLIMMERHOST_VERSION}, {"module", FileHash(choice.file)}};
      manifest.emplace(Utf8Path(options.manifest), options.skipExisting, options.overwrite);
    }
    ShotRender(page, settings, plan, module, manifest ? &*manifest : nullptr).Run(&report);
  }
  report.Finish();
  return report.Count(FrameState::kFailed) > 0    ? kExitFailed
         : report.Count(FrameState::kMissing) > 0 ? kExitMissing
                                                  : kExitDone;
}

}  // namespace glimmerhost
