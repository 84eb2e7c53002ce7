// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/manifest_check.h"

#include <iostream>
#include <map>

#include "host/shots/manifest.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// Which file is the newer one nobody knows: of two that tell of a frame, the one that is right
// about its output counts.
void Merge(const std::map<int, ManifestEntry>& more, std::map<int, ManifestEntry>* entries) {
  for (const auto& [frame, entry] : more) {
    const auto [place, isNew] = entries->try_emplace(frame, entry);
    try {
      if (!isNew && IsAsWritten(entry)) {
        place->second = entry;
      }
    } catch (const Failure&) {
      // Its output cannot be read, which is told of the other.
    }
  }
}

}  // namespace

ManifestCheck CheckManifests(const std::vector<std::filesystem::path>& files,
                             const std::vector<int>& frames) {
  ManifestCheck check;
  std::map<int, ManifestEntry> entries;
  for (const std::filesystem::path& file : files) {
    try {
      Merge(ReadManifest(file), &entries);
    } catch (const MissingInput& fault) {
      check.faults.emplace_back(fault.what());
    }
  }
  for (const std::string& fault : CheckManifest(entries, frames)) {
    check.faults.push_back(fault);
  }
  check.frames = entries.size();
  return check;
}

int TellOf(const ManifestCheck& check, std::ostream& out) {
  for (const std::string& fault : check.faults) {
    std::cerr << "glimmerhost: " << AsLine(fault) << '\n';
  }
  if (check.faults.empty()) {
    out << check.frames << (check.frames == 1 ? " frame is" : " frames are")
        << " as they were written\n";
  }
  return check.faults.empty() ? kExitDone : kExitFailed;
}

}  // namespace glimmerhost
