// glimmerhost submit: a shot in chunks, by processes on this machine or by the jobs of a farm.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

#include "host/glimmerhost/render_command.h"
#include "host/glimmerhost/typed_arguments.h"

namespace glimmerhost {

// chunk is the most frames that a chunk may have here; empty for the default.
struct SubmitOptions : RenderOptions {
  // Where chunks are rendered, and by which engine of the effect: up to one word for each.
  std::vector<std::string> engines;
  std::string jobs;                 // processes at once; empty for one
  std::vector<std::string> sbatch;  // options of sbatch
};

// Cuts the shot, and renders the chunks or hands them over. Returns the program's exit code. Throws
// Failure, MissingInput or UsageError; nothing has been handed over then.
//   typed  all that the command was given: what it is not alone in knowing goes to the chunks
int RunSubmit(const SubmitOptions& options, const std::vector<TypedArgument>& typed,
              std::ostream& out);

}  // namespace glimmerhost
