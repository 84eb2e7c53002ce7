// glimmerhost session: a person at the effect's page, played from a script.
#pragma once

#include <ostream>
#include <string>

#include "host/glimmerhost/run_options.h"

namespace glimmerhost {

// The output is the folder that the script writes into, empty for the current one.
struct SessionOptions : RunOptions {
  std::string script;
  bool trace = false;
};

// Plays the script; what it prints, and the trace, go to out. Throws Failure, which says the
// step, for one that fails or finds another thing than it expects, and UsageError for a
// script that is wrong, before any step is done.
void RunSession(const SessionOptions& options, std::ostream& out);

}  // namespace glimmerhost
