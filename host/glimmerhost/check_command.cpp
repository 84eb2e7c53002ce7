#include "host/glimmerhost/check_command.h"

#include <iostream>
#include <map>

#include "host/shots/frame_list.h"
#include "host/shots/manifest.h"
#include "host/support/failure.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {

int RunCheck(const CheckOptions& options, std::ostream& out) {
  const std::vector<int> frames =
      options.frames.empty() ? std::vector<int>() : ParseFrames("--frames", options.frames);
  std::map<int, ManifestEntry> entries;
  for (const std::string& file : options.manifests) {
    for (auto& [frame, entry] : ReadManifest(Utf8Path(file))) {
      entries[frame] = entry;
    }
  }
  const std::vector<std::string> faults = CheckManifest(entries, frames);
  for (const std::string& fault : faults) {
    std::cerr << "glimmerhost: " << fault << '\n';
  }
  if (faults.empty()) {
    out << entries.size() << (entries.size() == 1 ? " frame is" : " frames are")
        << " as they were written\n";
  }
  return faults.empty() ? kExitDone : kExitFailed;
}

}  // namespace glimmerhost
