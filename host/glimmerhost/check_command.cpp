// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost check: whether the outputs of a manifest are all there, and what was written.
#include <filesystem>

#include "host/glimmerhost/command.h"
#include "host/shots/frame_list.h"
#include "host/shots/manifest_check.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

class CheckCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    options->Arguments("MANIFEST", &manifests_, "Files that render --manifest has written");
    options->Value("--frames", &frames_,
                   {"Frames", "LIST", "Frames that must be in them (default: those that are)"});
  }

  int Run(std::ostream& out) override {
    const std::vector<int> frames =
        frames_.empty() ? std::vector<int>() : ParseFrames("--frames", frames_);
    std::vector<std::filesystem::path> files;
    for (const std::string& file : manifests_) {
      files.push_back(Utf8Path(file));
    }
    return TellOf(CheckManifests(files, frames), out);
  }

 private:
  std::vector<std::string> manifests_;
  std::string frames_;
};

}  // namespace

std::unique_ptr<Command> MakeCheckCommand() { return std::make_unique<CheckCommand>(); }

}  // namespace glimmerhost
