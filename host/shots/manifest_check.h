// SPDX-License-Identifier: BSD-3-Clause
// Manifests held against the outputs that they tell of.
#pragma once

#include <cstddef>
#include <filesystem>
#include <iosfwd>
#include <map>
#include <string>
#include <vector>

namespace glimmerhost {

struct ManifestCheck {
  std::size_t frames = 0;            // that the manifests tell of
  std::vector<std::string> missing;  // a line for each manifest that is not there
  std::vector<int> lacking;          // frames without a line
  std::vector<std::string> faults;   // of outputs, a line each

  // Frames by the arithmetic that their lines tell; by an empty one where a line of an earlier
  // program does not.
  std::map<std::string, std::vector<int>> arithmetics;
};

// The manifests of one shot, taken together, those that are not there left out, so that the frames
// that they would have are named.
//   frames  that must be in them; empty for those that are
// Throws Failure for a file that is no manifest.
ManifestCheck CheckManifests(const std::vector<std::filesystem::path>& files,
                             const std::vector<int>& frames);

// Says the faults on stderr, or on out that there is none. Returns the program's exit code: 3 if
// nothing is wrong but that manifests are missing, and the frames that they would have. Frames of
// several arithmetics, which may differ where they should not, are told on stderr, too, and change
// nothing about the code: each of them is as it was written.
int TellOf(const ManifestCheck& check, std::ostream& out);

}  // namespace glimmerhost
