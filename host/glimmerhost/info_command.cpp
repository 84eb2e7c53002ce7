#include "host/glimmerhost/info_command.h"

#include <filesystem>
#include <iomanip>
#include <ostream>
#include <system_error>

#include "host/looks/page_file.h"
#include "host/module/effect_module.h"
#include "host/module/module_choice.h"

namespace glimmerhost {

namespace {

void ListEngines(const lx::Footprint& used, std::ostream& out) {
  out << "\nEngines\n";
  for (const lx::Footprint& engine : lx::kFootprints) {
    std::error_code error;
    out << "  " << std::left << std::setw(16) << engine.name << engine.description
        << (&engine == &used ? "; the one in use" : "")
        << (std::filesystem::exists(ModuleFileOf(engine), error) ? "" : "; not installed") << '\n';
  }
}

}  // namespace

void RunInfo(const InfoOptions& options, std::ostream& out) {
  const ModuleChoice choice = ChooseModule(options.engine, options.module);
  const Page page = LoadPage();
  const EffectModule effect(choice);
  out << "Module " << choice.file.filename().string() << ", engine " << choice.engine->name << '\n';
  ListEngines(*choice.engine, out);
  out << "\nClasses\n";
  for (const EffectModule::ClassText& text : effect.Classes()) {
    out << "  " << text.guid << "\n    " << text.base << "\n    " << text.text << '\n';
  }
  out << "\nParameters\n";
  for (const Parameter& parameter : page.Parameters()) {
    out << "  " << std::left << std::setw(16) << parameter.key << parameter.label << '\n'
        << "    allowed " << parameter.Allowed() << "; default "
        << parameter.Show(parameter.initial);
    if (!parameter.option.empty()) {
      out << "; option " << parameter.option;
    }
    out << '\n';
  }
}

}  // namespace glimmerhost
