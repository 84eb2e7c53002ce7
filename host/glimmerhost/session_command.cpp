#include "host/glimmerhost/session_command.h"

#include <filesystem>
#include <string>
#include <vector>

#include "host/glimmerhost/processors.h"
#include "host/looks/page_file.h"
#include "host/module/effect_module.h"
#include "host/module/trace/trace.h"
#include "host/pictures/picture_file.h"
#include "host/session/session_player.h"
#include "host/session/session_script.h"
#include "host/support/failure.h"
#include "host/support/progress.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

// What pictures are read for that any of the outputs may be made of.
std::string CheckOutputs(const std::vector<std::filesystem::path>& outputs, bool overwrite) {
  std::string keptFor = kNoFormat;
  for (const std::filesystem::path& output : outputs) {
    const std::string one = KeptFor(PictureOutput(output, overwrite).Format());
    keptFor = keptFor == kNoFormat || keptFor == one ? one : kAnyFormat;
  }
  return keptFor;
}

}  // namespace

void RunSession(const SessionOptions& options, std::ostream& out) {
  NarrowProcessors(options.threads);
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  const Page page = LoadPage();
  const SessionScript script =
      ReadSessionScript(Utf8Path(options.script), page, Utf8Path(options.output));
  const std::string keptFor = CheckOutputs(script.outputs, options.overwrite);
  Progress progress(!options.quiet);
  Trace trace(out);
  Trace* const wanted = options.trace ? &trace : nullptr;
  {
    const EffectModule module(choice, wanted);
    SessionPlayer player(module, page, SessionSettingsOf(options), keptFor, out, &progress);
    for (const SessionStep& step : script.steps) {
      if (wanted != nullptr) {
        trace.Step(step.place + ": " + step.text);
      }
      try {
        step.play(&player);
      } catch (const Unexpected& fault) {
        throw Failure(step.place + ": " + step.text + ": " + fault.what());
      } catch (const Failure& fault) {
        throw Failure(step.place + ": " + fault.what());
      }
    }
  }
  progress.Finish(std::to_string(script.steps.size()) + " steps");
}

}  // namespace glimmerhost
