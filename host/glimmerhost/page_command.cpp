// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost page: a picture with the effect's handles on it.
#include <ostream>
#include <string>

#include "host/glimmerhost/command.h"
#include "host/glimmerhost/run_options.h"
#include "host/looks/page_file.h"
#include "host/module/effect_module.h"
#include "host/pictures/picture_file.h"
#include "host/session/session_player.h"
#include "host/support/failure.h"
#include "host/support/progress.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

struct PageOptions : RunOptions {
  std::string input;
};

// Opens the effect's page over the picture, has the module draw, and writes the picture with
// what it drew. Throws Failure or UsageError; there is no output then.
void RunPage(const PageOptions& options, std::ostream& out) {
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  const Page page = LoadPage();
  const SessionSettings settings =
      SettingsOf(page, ReadLayers(page, options.look), options.overwrite);
  const std::string keptFor =
      KeptFor(PictureOutput(Utf8Path(options.output), options.overwrite).Format());
  Progress progress(!options.quiet);
  {
    const EffectModule module(choice);
    SessionPlayer player(module, page, settings, keptFor, out, &progress);
    player.Load(Utf8Path(options.input));
    player.Draw();
    if (!player.HasHandles()) {
      progress.Warn("nothing is drawn in this shape; --shape image has handles on the picture");
    }
    progress.Show("Writing " + options.output);
    player.Save(Utf8Path(options.output), true);
  }
  progress.Finish(options.output);
}

class PageCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    options->Argument("INPUT", &options_.input, "The picture that the page is opened over");
    AddOutput(options, &options_);
    AddLook(options, LoadPage(), false, &options_);
    AddLookFiles(options, &options_);
    AddPixelAspect(options, "the file's", &options_);
    AddRunning(options, &options_);
    AddEngine(options, &options_.engine);
  }

  int Run(std::ostream& out) override {
    RunPage(options_, out);
    return kExitDone;
  }

 private:
  PageOptions options_;
};

}  // namespace

std::unique_ptr<Command> MakePageCommand() { return std::make_unique<PageCommand>(); }

}  // namespace glimmerhost
