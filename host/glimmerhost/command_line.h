// The command line: which commands and options there are, and running them.
#pragma once

namespace glimmerhost {

// Runs the program. Returns its exit code; errors are one line on stderr.
int RunCommandLine(int argc, const char* const* argv);

}  // namespace glimmerhost
