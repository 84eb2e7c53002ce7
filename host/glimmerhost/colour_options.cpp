// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/colour_options.h"

#include <cstdlib>
#include <vector>

#include "host/pictures/colour_config.h"
#include "host/support/failure.h"
#include "host/support/nearest.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

void CheckSpace(const ColourConfig& config, const char* option, const std::string& space) {
  if (!space.empty() && !config.Knows(space)) {
    throw UsageError(std::string(option) + ": " +
                     UnknownName("colour space", space, config.Names()).what());
  }
}

std::string ConfigFile(const ColourOptions& options, const std::string& asked) {
  if (!options.config.empty()) {
    return options.config;
  }
  const char* const named = std::getenv("OCIO");
  if (named == nullptr || *named == '\0') {
    throw UsageError(
        asked +
        " needs a colour configuration: --colour-config FILE, or a file that OCIO names in "
        "the environment");
  }
  return named;
}

}  // namespace

std::shared_ptr<const ColourPath> ParseColours(const ColourOptions& options) {
  const std::string asked = !options.in.empty()       ? "--colour-in " + options.in
                            : !options.out.empty()    ? "--colour-out " + options.out
                            : !options.config.empty() ? "--colour-config " + options.config
                                                      : "";
  if (asked.empty()) {
    return nullptr;
  }
  if (!kHasColourManagement) {
    throw UsageError(asked + ": this build has no colour management");
  }
  if (options.in.empty() && options.out.empty()) {
    throw UsageError(asked + " needs --colour-in or --colour-out");
  }
  const auto config = ColourConfig::Load(Utf8Path(ConfigFile(options, asked)));
  CheckSpace(*config, "--colour-in", options.in);
  CheckSpace(*config, "--colour-out", options.out);
  const std::string in = options.in.empty() ? kWorkingSpace : options.in;
  return config->Path(in, options.out.empty() ? in : options.out);
}

}  // namespace glimmerhost
