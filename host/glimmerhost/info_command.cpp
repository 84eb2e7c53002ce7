#include "host/glimmerhost/info_command.h"

#include <filesystem>
#include <iomanip>
#include <ostream>

#include "host/glimmerhost/effect_module.h"
#include "host/glimmerhost/page_file.h"

namespace glimmerhost {

void RunInfo(const std::string& module, std::ostream& out) {
  const std::filesystem::path file = ModuleFileOf(module);
  const Page page = LoadPage();
  const EffectModule effect(file);
  out << "Module " << file.filename().string() << "\n\nClasses\n";
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
