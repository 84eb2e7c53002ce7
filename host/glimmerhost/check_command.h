// glimmerhost check: whether the outputs of a manifest are all there, and what was written.
#pragma once

#include <iosfwd>
#include <string>
#include <vector>

namespace glimmerhost {

struct CheckOptions {
  std::vector<std::string> manifests;
  std::string frames;  // a list that they must have; empty for what they have
};

// Says what is wrong, a line each; a manifest that is not there is one of these things, so that the
// frames that it would have are named. Returns the program's exit code. Throws Failure for a file
// that is no manifest, UsageError for a list that is none.
int RunCheck(const CheckOptions& options, std::ostream& out);

}  // namespace glimmerhost
