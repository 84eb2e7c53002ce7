// SPDX-License-Identifier: BSD-3-Clause
// The command line of glimmerhost.
#pragma once

#include <string>
#include <vector>

namespace glimmerhost {

// Runs a command and returns the program's exit code; what goes wrong stands on stderr.
//   arguments  with the program's own name first
int RunCommandLine(const std::vector<std::string>& arguments);

// The same with what main was given.
int RunCommandLine(int argc, const char* const* argv);

}  // namespace glimmerhost
