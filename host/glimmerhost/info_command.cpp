// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost info: which engines there are, what the module registered, and the parameters of its
// page.
#include <filesystem>
#include <iomanip>
#include <ostream>
#include <system_error>

#include "host/glimmerhost/command.h"
#include "host/glimmerhost/run_options.h"
#include "host/looks/page_file.h"
#include "host/module/effect_module.h"
#include "host/module/module_choice.h"
#include "host/render/arithmetic.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

const char* Absence(const lx::Footprint& engine) {
  std::error_code error;
  if (std::filesystem::exists(ModuleFileOf(engine), error)) {
    return "";
  }
  return IsInBuild(engine) ? "; not installed" : "; not in this build, which has no FFTW";
}

void ListEngines(const lx::Footprint& used, std::ostream& out) {
  out << "\nEngines\n";
  for (const lx::Footprint& engine : lx::kFootprints) {
    out << "  " << std::left << std::setw(16) << engine.name << engine.description
        << (&engine == &used ? "; the one in use" : "") << Absence(engine) << '\n';
  }
}

// As render takes them with the same options.
void TellRoads(bool hasFloats, std::ostream& out) {
  out << "\nRoads\n"
      << "  whole numbers   through the module, in 16 bits\n"
      << "  floating point  "
      << (hasFloats ? "through the library, in floats" : "through the module, in 16 bits")
      << (hasFloats ? "; --precision chooses for either kind\n" : "\n");
}

void ListClasses(const EffectModule& effect, std::ostream& out) {
  out << "\nClasses\n";
  for (const EffectModule::ClassText& text : effect.Classes()) {
    out << "  " << text.guid << "\n    " << text.base << "\n    " << text.text << '\n';
  }
}

void ListParameters(const Page& page, std::ostream& out) {
  out << "\nParameters\n";
  for (const Parameter& parameter : page.Parameters()) {
    out << "  " << std::left << std::setw(16) << parameter.key << parameter.label << '\n'
        << "    " << parameter.Allowed() << "; default " << parameter.Show(parameter.initial);
    for (const PageOption* option :
         {page.SharedOptionOf(parameter.key), page.OptionOf(parameter.key)}) {
      if (option != nullptr) {
        out << "; option --" << option->name;
      }
    }
    out << '\n';
  }
}

class InfoCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    AddEngine(options, &engine_);
    AddModule(options, &module_);
  }

  int Run(std::ostream& out) override {
    const ModuleChoice choice = ChooseModule(engine_, module_);
    const Page page = LoadPage();
    const EffectModule effect(choice);
    out << "Module " << choice.file.filename().string() << ", engine " << choice.engine->name
        << '\n';
    // What manifests keep of each frame.
    out << "Arithmetic " << ArithmeticOf(effect) << '\n';
    ListEngines(*choice.engine, out);
    TellRoads(module_.empty() && (engine_.empty() || engine_ == kDefaultEngine), out);
    ListClasses(effect, out);
    ListParameters(page, out);
    return kExitDone;
  }

 private:
  std::string engine_;
  std::string module_;
};

}  // namespace

std::unique_ptr<Command> MakeInfoCommand() { return std::make_unique<InfoCommand>(); }

}  // namespace glimmerhost
