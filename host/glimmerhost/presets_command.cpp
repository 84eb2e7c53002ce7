// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost presets: the looks that come with the program.
#include <algorithm>
#include <cstddef>
#include <iomanip>
#include <ostream>

#include "host/glimmerhost/command.h"
#include "host/looks/presets.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

class PresetsCommand final : public Command {
 public:
  void AddOptions(OptionSet* /*options*/) override {}

  int Run(std::ostream& out) override {
    const std::vector<Preset> presets = Presets();
    std::size_t widest = 0;
    for (const Preset& preset : presets) {
      widest = std::max(widest, preset.name.size());
    }
    for (const Preset& preset : presets) {
      out << std::left << std::setw(static_cast<int>(widest) + 2) << preset.name << preset.summary
          << '\n';
    }
    return kExitDone;
  }
};

}  // namespace

std::unique_ptr<Command> MakePresetsCommand() { return std::make_unique<PresetsCommand>(); }

}  // namespace glimmerhost
