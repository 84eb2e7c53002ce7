// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/plugged_formats.h"

#include <new>
#include <utility>

#include "host/pictures/colour_config.h"
#include "host/pictures/picture_plugin.h"
#include "host/pictures/quiet_stderr.h"
#include "host/support/failure.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

fs::path PluginFile() { return (ProgramFolder() / GLIMMERHOST_PICTURE_PLUGIN).lexically_normal(); }

struct Opened {
  explicit Opened(const fs::path& file) : library(file) {
    auto* const entry = library.Find<PicturePluginEntry>(kPicturePluginEntry);
    plugin = entry == nullptr ? nullptr : entry(GLIMMERHOST_VERSION);
    if (plugin == nullptr) {
      throw Failure(file.string() + ": the plug-in of another version of this program");
    }
  }

  SharedLibrary library;
  const PicturePlugin* plugin;
};

// A library that goes while its threads still run, or while a picture holds something of its own,
// would take the program with it.
// Intended: the object is never freed, and so the library never closed.
const PicturePlugin& Open() {
  static const auto* const opened = new Opened(PluginFile());
  return *opened->plugin;
}

//   file, why  what it is opened for
const PicturePlugin& OpenFor(const fs::path& file, const std::string& why) {
  try {
    return Open();
  } catch (const Failure& fault) {
    throw Failure(file.string() + ": " + why +
                  ", which takes the plug-in for pictures: " + fault.what());
  }
}

void Raise(const PluginOutcome& outcome) {
  switch (outcome.kind) {
    case PluginOutcome::Kind::kDone:
      return;
    case PluginOutcome::Kind::kMissingInput:
      throw MissingInput(outcome.what);
    case PluginOutcome::Kind::kNoMemory:
      throw std::bad_alloc();
    default:
      throw Failure(outcome.what);
  }
}

std::string FormatWanted(const fs::path& file) {
  const std::string ending = file.extension().string();
  return ending.empty() ? "its format is neither PNG nor TIFF" : "its format is " + ending;
}

class PluggedConfig final : public ColourConfig {
 public:
  explicit PluggedConfig(std::unique_ptr<const PluginColours> colours)
      : colours_(std::move(colours)) {}

  std::vector<std::string> Names() const override { return colours_->Names(); }

  bool Knows(const std::string& name) const override { return colours_->Knows(name); }

  std::shared_ptr<const ColourPath> Path(const std::string& in,
                                         const std::string& out) const override {
    std::shared_ptr<const ColourPath> path;
    Raise(colours_->Path(in, out, &path));
    return path;
  }

  std::vector<std::string> Displays() const override { return colours_->Displays(); }

  std::vector<std::string> Views(const std::string& display) const override {
    return colours_->Views(display);
  }

  std::shared_ptr<const ColourTransform> DisplayPath(const std::string& in,
                                                     const std::string& display,
                                                     const std::string& view) const override {
    std::shared_ptr<const ColourTransform> path;
    Raise(colours_->DisplayPath(in, display, view, &path));
    return path;
  }

 private:
  std::unique_ptr<const PluginColours> colours_;
};

}  // namespace

const bool kHasPicturePlugin = true;
const bool kHasColourManagement = true;
const char* const kReadableFormats = "PNG, TIFF, EXR, DPX, JPEG and what else OpenImageIO reads";
const char* const kWritableEndings =
    ".png, .tif, .exr, .dpx, .jpg or another format that OpenImageIO writes";

std::optional<OutputFormat> PluggedFormatOf(const fs::path& file) {
  std::optional<OutputFormat> format;
  Raise(OpenFor(file, FormatWanted(file)).FormatOf(file, &format));
  return format;
}

Picture ReadPlugged(const fs::path& file, const std::string& why, const ReadOptions& options,
                    ReadReport* report) {
  const PicturePlugin& plugin = OpenFor(file, why.empty() ? FormatWanted(file) : why);
  const QuietStderr quiet;
  Picture picture;
  Raise(plugin.Read(file, options, &picture, report));
  return picture;
}

PictureHead ReadPluggedHead(const fs::path& file, const std::string& why) {
  const PicturePlugin& plugin = OpenFor(file, why.empty() ? FormatWanted(file) : why);
  const QuietStderr quiet;
  PictureHead head;
  Raise(plugin.ReadHead(file, &head));
  return head;
}

void CompletePlugged(const fs::path& file, const std::string& why, const ReadOptions& options,
                     Picture* picture, ReadReport* report) {
  const PicturePlugin& plugin = OpenFor(file, why);
  const QuietStderr quiet;
  Raise(plugin.Complete(file, options, picture, report));
}

void WritePlugged(const OutputFile& file, const OutputFormat& format, const Picture& picture,
                  const Coding& coding, std::vector<NotCarried>* lost) {
  const PicturePlugin& plugin = OpenFor(file.name, FormatWanted(file.name));
  FileBytes bytes(file.file, FileUse::kMake);
  if (!bytes.IsOpen()) {
    throw Failure("the file cannot be made");
  }
  Raise(plugin.Write(file, &bytes, format, picture, coding, lost));
}

std::unique_ptr<const ColourConfig> ColourConfig::Load(const fs::path& file) {
  std::unique_ptr<const PluginColours> colours;
  Raise(OpenFor(file, "it is a colour configuration").LoadColours(file, &colours));
  return std::make_unique<PluggedConfig>(std::move(colours));
}

}  // namespace glimmerhost
