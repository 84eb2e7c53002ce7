// SPDX-License-Identifier: BSD-3-Clause
#include "host/shots/manifest_check.h"

#include <iostream>
#include <map>

#include "host/shots/frame_list.h"
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

// A line for each arithmetic, if there are several. Where no line says its own, nothing is known.
std::vector<std::string> TellArithmetics(const ManifestCheck& check) {
  std::vector<std::string> lines;
  if (check.arithmetics.size() < 2) {
    return lines;
  }
  lines.push_back("frames of " + std::to_string(check.arithmetics.size()) +
                  " arithmetics, whose samples may differ in their last bits:");
  for (const auto& [arithmetic, frames] : check.arithmetics) {
    lines.push_back("  " + std::to_string(frames.size()) +
                    (frames.size() == 1 ? " frame" : " frames") + ", " + ShowFrames(frames) + ": " +
                    (arithmetic.empty() ? "not told" : arithmetic));
  }
  return lines;
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
      check.missing.emplace_back(fault.what());
    }
  }
  check.lacking = FramesLacking(entries, frames);
  check.faults = CheckOutputs(entries);
  check.frames = entries.size();
  for (const auto& [frame, entry] : entries) {
    check.arithmetics[entry.arithmetic].push_back(frame);
  }
  return check;
}

int TellOf(const ManifestCheck& check, std::ostream& out) {
  std::vector<std::string> lines = check.missing;
  if (!check.lacking.empty()) {
    lines.push_back("no line for frames " + ShowFrames(check.lacking));
  }
  lines.insert(lines.end(), check.faults.begin(), check.faults.end());
  // A run that was killed before its first frame leaves such a manifest.
  if (check.frames == 0 && lines.empty()) {
    lines.emplace_back("no frame is in any of the manifests");
  }
  const std::size_t faults = lines.size();
  for (const std::string& line : TellArithmetics(check)) {
    lines.push_back(line);
  }
  for (const std::string& line : lines) {
    std::cerr << "glimmerhost: " << AsLine(line) << '\n';
  }
  if (faults == 0) {
    out << check.frames << (check.frames == 1 ? " frame is" : " frames are")
        << " as they were written\n";
  }
  return faults == 0                                      ? kExitDone
         : check.faults.empty() && !check.missing.empty() ? kExitMissing
                                                          : kExitFailed;
}

}  // namespace glimmerhost
