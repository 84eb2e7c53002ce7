#include "host/glimmerhost/check_command.h"

#include <iostream>
#include <map>

#include "host/glimmerhost/text.h"
#include "host/shots/frame_list.h"
#include "host/shots/manifest.h"
#include "host/support/failure.h"
#include "host/support/utf8_path.h"

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

int RunCheck(const CheckOptions& options, std::ostream& out) {
  const std::vector<int> frames =
      options.frames.empty() ? std::vector<int>() : ParseFrames("--frames", options.frames);
  std::map<int, ManifestEntry> entries;
  std::vector<std::string> faults;
  for (const std::string& file : options.manifests) {
    try {
      Merge(ReadManifest(Utf8Path(file)), &entries);
    } catch (const MissingInput& fault) {
      faults.emplace_back(fault.what());
    }
  }
  for (const std::string& fault : CheckManifest(entries, frames)) {
    faults.push_back(fault);
  }
  for (const std::string& fault : faults) {
    std::cerr << "glimmerhost: " << AsLine(fault) << '\n';
  }
  if (faults.empty()) {
    out << entries.size() << (entries.size() == 1 ? " frame is" : " frames are")
        << " as they were written\n";
  }
  return faults.empty() ? kExitDone : kExitFailed;
}

}  // namespace glimmerhost
