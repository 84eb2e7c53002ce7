// glimmerhost page: a picture with the effect's handles on it.
#pragma once

#include <string>

#include "host/glimmerhost/run_options.h"

namespace glimmerhost {

struct PageOptions : RunOptions {
  std::string input;
};

// Opens the effect's page over the picture, has the module draw, and writes the picture with
// what it drew. Throws Failure or UsageError; there is no output then.
void RunPage(const PageOptions& options);

}  // namespace glimmerhost
