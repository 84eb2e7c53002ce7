// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost session: a person at the effect's page, played from a script.
#include <filesystem>
#include <string>
#include <vector>

#include "host/glimmerhost/command.h"
#include "host/glimmerhost/processors.h"
#include "host/glimmerhost/run_options.h"
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

// The output is the folder that the script writes into, empty for the current one.
struct SessionOptions : RunOptions {
  std::string script;
  bool trace = false;
};

// Plays the script; what it prints, and the trace, go to out. Throws Failure, which says the
// step, for one that fails or finds another thing than it expects, and UsageError for a
// script that is wrong, before any step is done.
void RunSession(const SessionOptions& options, std::ostream& out) {
  NarrowProcessors(options.threads);
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  const Page page = LoadPage();
  const SessionSettings settings =
      SettingsOf(page, ReadLayers(page, options.look), options.overwrite);
  const SessionScript script =
      ReadSessionScript(Utf8Path(options.script), page, Utf8Path(options.output));
  const std::string keptFor = CheckOutputs(script.outputs, options.overwrite);
  Progress progress(!options.quiet);
  Trace trace(out);
  Trace* const wanted = options.trace ? &trace : nullptr;
  {
    const EffectModule module(choice, wanted);
    SessionPlayer player(module, page, settings, keptFor, out, &progress);
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

class SessionCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    options->Argument("SCRIPT", &options_.script, "A text file with one step a line");
    options->Value("-o,--output", &options_.output,
                   {kFilesGroup, "FOLDER",
                    "The folder that the script's files go into (default: the current one)"});
    options->Switch("--trace", &options_.trace, kRunningGroup,
                    "Print every call between host and module, step by step");
    AddLook(options, LoadPage(), true, &options_);
    AddLookFiles(options, &options_);
    AddPixelAspect(options, "the file's", &options_);
    AddThreads(options, &options_.threads);
    AddRunning(options, &options_);
    AddEngine(options, &options_.engine);
  }

  std::string Notes() const override {
    return "Steps of a script, of which load must be the first:\n" + SessionForms() +
           "Pictures lie beside the script; # begins a comment.\n";
  }

  int Run(std::ostream& out) override {
    RunSession(options_, out);
    return kExitDone;
  }

 private:
  SessionOptions options_;
};

}  // namespace

std::unique_ptr<Command> MakeSessionCommand() { return std::make_unique<SessionCommand>(); }

}  // namespace glimmerhost
