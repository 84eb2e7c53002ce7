// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/command.h"

namespace glimmerhost {

const std::vector<CommandEntry>& Commands() {
  static const std::vector<CommandEntry> commands = {
      {"render", "Render a picture, or a shot of them", MakeRenderCommand},
      {"submit", "Render a shot in chunks, by processes on this machine or by a farm",
       MakeSubmitCommand},
      {"psf", "Write the aperture: what one bright pixel becomes, enlarged", MakePsfCommand},
      {"page", "Write a picture with the effect's handles drawn on it", MakePageCommand},
      {"session", "Play a script of what a person does at the effect's page", MakeSessionCommand},
      {"wisdom", "Show where measured plans of the engine exact are kept, and measure them",
       MakeWisdomCommand},
      {"check", "Check the outputs of a manifest: all there, and unchanged", MakeCheckCommand},
      {"presets", "List the looks that come with the program", MakePresetsCommand},
      {"info", "List engines, parameters with their ranges, and the module's classes",
       MakeInfoCommand},
  };
  return commands;
}

}  // namespace glimmerhost
