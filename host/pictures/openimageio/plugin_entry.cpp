// SPDX-License-Identifier: BSD-3-Clause
// The plug-in's one exported name.
#include <exception>
#include <new>
#include <string>
#include <string_view>
#include <utility>

#include "host/pictures/openimageio/opencolorio_config.h"
#include "host/pictures/openimageio/openimageio_formats.h"
#include "host/pictures/picture_plugin.h"
#include "host/support/failure.h"
#include "hostframe/interfaces/visibility.h"

namespace glimmerhost {
namespace {

thread_local long refusedRequests = 0;
std::new_handler handlerBefore = nullptr;

// Where operator new has no memory, in whatever library.
void NoteRefused() {
  ++refusedRequests;
  if (handlerBefore == nullptr) {
    throw std::bad_alloc();
  }
  handlerBefore();
}

// Runs the work, and says how it ended. The library catches itself what stops it from keeping or
// writing an attribute, and goes on without: such work is not done.
template <class Work>
PluginOutcome Outcome(const Work& work) {
  const long refusedBefore = refusedRequests;
  try {
    work();
    return refusedRequests == refusedBefore ? PluginOutcome{}
                                            : PluginOutcome{PluginOutcome::Kind::kNoMemory, {}};
  } catch (const MissingInput& fault) {
    return {PluginOutcome::Kind::kMissingInput, fault.what()};
  } catch (const std::bad_alloc&) {
    return {PluginOutcome::Kind::kNoMemory, {}};
  } catch (const std::exception& fault) {
    return {PluginOutcome::Kind::kFailure, fault.what()};
  }
}

// Once, and for good: the plug-in is never closed.
void WatchMemory() { handlerBefore = std::set_new_handler(NoteRefused); }

class Colours final : public PluginColours {
 public:
  explicit Colours(std::unique_ptr<const ColourConfig> config) : config_(std::move(config)) {}

  std::vector<std::string> Names() const override { return config_->Names(); }

  bool Knows(const std::string& name) const override { return config_->Knows(name); }

  PluginOutcome Path(const std::string& in, const std::string& out,
                     std::shared_ptr<const ColourPath>* path) const override {
    return Outcome([&] { *path = config_->Path(in, out); });
  }

  std::vector<std::string> Displays() const override { return config_->Displays(); }

  std::vector<std::string> Views(const std::string& display) const override {
    return config_->Views(display);
  }

  PluginOutcome DisplayPath(const std::string& in, const std::string& display,
                            const std::string& view,
                            std::shared_ptr<const ColourTransform>* path) const override {
    return Outcome([&] { *path = config_->DisplayPath(in, display, view); });
  }

 private:
  std::unique_ptr<const ColourConfig> config_;
};

class Plugin final : public PicturePlugin {
 public:
  PluginOutcome FormatOf(const std::filesystem::path& file,
                         std::optional<OutputFormat>* format) const override {
    return Outcome([&] { *format = OpenImageIoFormatOf(file); });
  }

  PluginOutcome Read(const std::filesystem::path& file, const ReadOptions& options,
                     Picture* picture, ReadReport* report) const override {
    return Outcome([&] { *picture = ReadByOpenImageIo(file, options, report); });
  }

  PluginOutcome ReadHead(const std::filesystem::path& file, PictureHead* head) const override {
    return Outcome([&] { *head = ReadHeadByOpenImageIo(file); });
  }

  PluginOutcome Complete(const std::filesystem::path& file, const ReadOptions& options,
                         Picture* picture, ReadReport* report) const override {
    return Outcome([&] { CompleteByOpenImageIo(file, options, picture, report); });
  }

  PluginOutcome Write(const OutputFile& file, FileBytes* bytes, const OutputFormat& format,
                      const Picture& picture, const Coding& coding,
                      std::vector<NotCarried>* lost) const override {
    return Outcome([&] { WriteByOpenImageIo(file, bytes, format, picture, coding, lost); });
  }

  PluginOutcome LoadColours(const std::filesystem::path& file,
                            std::unique_ptr<const PluginColours>* colours) const override {
    return Outcome([&] { *colours = std::make_unique<Colours>(LoadOpenColorIoConfig(file)); });
  }
};

}  // namespace
}  // namespace glimmerhost

extern "C" QTL_EXPORT const glimmerhost::PicturePlugin* glimmerhostPicturePlugin(
    const char* version) {
  static const glimmerhost::Plugin plugin;
  static const bool notes = (glimmerhost::WatchMemory(), true);
  (void)notes;
  return std::string_view(version) == GLIMMERHOST_VERSION ? &plugin : nullptr;
}
