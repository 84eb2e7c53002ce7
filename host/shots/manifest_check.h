// SPDX-License-Identifier: BSD-3-Clause
// Manifests held against the outputs that they tell of.
#pragma once

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <string>
#include <vector>

namespace glimmerhost {

struct ManifestCheck {
  std::size_t frames = 0;           // that the manifests tell of
  std::vector<std::string> faults;  // a line each; empty if all is as it was written
};

// The manifests of one shot, taken together. One that is not there is a fault, so that the frames
// that it would have are named.
//   frames  that must be in them; empty for those that are
// Throws Failure for a file that is no manifest.
ManifestCheck CheckManifests(const std::vector<std::filesystem::path>& files,
                             const std::vector<int>& frames);

// Says the faults on stderr, or on out that there is none. Returns the program's exit code.
int TellOf(const ManifestCheck& check, std::ostream& out);

}  // namespace glimmerhost
