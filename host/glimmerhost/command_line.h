// The command line: which commands and options there are, and running them.
#pragma once

#include <string>
#include <vector>

namespace glimmerhost {

// Runs the program. Returns its exit code; errors are one line on stderr.
//   arguments  in UTF-8, the program's own name first
int RunCommandLine(const std::vector<std::string>& arguments);

}  // namespace glimmerhost
