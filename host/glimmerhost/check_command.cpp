#include "host/glimmerhost/check_command.h"

#include <filesystem>

#include "host/shots/frame_list.h"
#include "host/shots/manifest_check.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {

int RunCheck(const CheckOptions& options, std::ostream& out) {
  const std::vector<int> frames =
      options.frames.empty() ? std::vector<int>() : ParseFrames("--frames", options.frames);
  std::vector<std::filesystem::path> files;
  for (const std::string& file : options.manifests) {
    files.push_back(Utf8Path(file));
  }
  return TellOf(CheckManifests(files, frames), out);
}

}  // namespace glimmerhost
