// SPDX-License-Identifier: BSD-3-Clause
// The options of a command as they were typed, for another process that is to be given the same.
#pragma once

#include <string>
#include <vector>

namespace CLI {
class App;
}  // namespace CLI

namespace glimmerhost {

struct TypedArgument {
  std::string option;  // its long name with dashes
  std::string text;    // one word that says the same: "--radius=4px", "--overwrite"
};

// All options that a command was given, in the order in which it lists them; not those without a
// value, which say nothing.
std::vector<TypedArgument> TypedArguments(const CLI::App& command);

}  // namespace glimmerhost
