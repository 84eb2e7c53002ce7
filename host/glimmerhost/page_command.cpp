#include "host/glimmerhost/page_command.h"

#include <iostream>
#include <string>

#include "host/looks/page_file.h"
#include "host/module/effect_module.h"
#include "host/pictures/picture_file.h"
#include "host/session/session_player.h"
#include "host/support/progress.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {

void RunPage(const PageOptions& options) {
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  const Page page = LoadPage();
  const std::string keptFor =
      KeptFor(PictureOutput(Utf8Path(options.output), options.overwrite).Format());
  Progress progress(!options.quiet);
  {
    const EffectModule module(choice);
    SessionPlayer player(module, page, SessionSettingsOf(options), keptFor, std::cout, &progress);
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

}  // namespace glimmerhost
