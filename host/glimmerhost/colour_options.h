// SPDX-License-Identifier: BSD-3-Clause
// The options about colour spaces.
#pragma once

#include <memory>
#include <string>

#include "host/pictures/colour_path.h"

namespace glimmerhost {

// As they were typed; an empty text was not given.
struct ColourOptions {
  std::string config;  // a file; otherwise what the environment's OCIO names
  std::string in;      // what files are in; scene_linear where only the outputs' space is given
  std::string out;     // what outputs are in; the inputs' where only that is given
};

// Null if no space is given: then values stay as they are.
// Throws UsageError for an unknown space or no configuration, MissingInput, and Failure for one
// that cannot be read.
std::shared_ptr<const ColourPath> ParseColours(const ColourOptions& options);

}  // namespace glimmerhost
