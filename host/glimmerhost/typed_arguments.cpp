// SPDX-License-Identifier: BSD-3-Clause
#include "host/glimmerhost/typed_arguments.h"

#include <CLI/CLI.hpp>

namespace glimmerhost {

std::vector<TypedArgument> TypedArguments(const CLI::App& command) {
  std::vector<TypedArgument> arguments;
  for (const CLI::Option* option : command.get_options()) {
    if (!option->nonpositional()) {
      continue;
    }
    const std::string name = option->get_name();
    const bool isFlag = option->get_expected_max() == 0;
    for (const std::string& value : option->results()) {
      if (isFlag && value == "true") {
        arguments.push_back({name, name});
      } else if (!value.empty()) {
        // In one word: a value that looks like an option is none then.
        arguments.push_back({name, std::string(name).append("=").append(value)});
      }
    }
  }
  return arguments;
}

}  // namespace glimmerhost
