// glimmerhost wisdom: where plans of the transforms are kept, and measuring them ahead.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace glimmerhost {

struct WisdomOptions {
  bool measure = false;
  std::vector<std::string> grids;  // sides, of which none stands for all
  std::string threads;             // a count; empty for every processor. A plan is for so many.
  bool quiet = false;
  std::string module;  // a module file; empty for the one beside the program
};

// Makes the standard directories where they are missing, and says what there is. Throws
// Failure, which names the directory that could not be made or written, or UsageError.
void RunWisdom(const WisdomOptions& options, std::ostream& out);

}  // namespace glimmerhost
