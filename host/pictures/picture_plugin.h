// SPDX-License-Identifier: BSD-3-Clause
// What program and picture plug-in are to each other: the formats and the colour spaces that need
// large libraries, in a file of their own, which is opened when a command has use for one.
//
//   program                                    plug-in
//   plugged_formats.h  --- PicturePlugin --->  OpenImageIO, OpenColorIO
//
// Both are built from one tree, by one compiler, and hand each other objects as they are; each
// has its own copy of the little that both link, none of which has a state. What has one stays with
// the program: the list of temporary files, and who may speak on stderr.
//
// No exception passes between them. Each has its own types of exceptions, which one loader may
// take for the same and another not. How a call ended comes back as a value.
#pragma once

#include <filesystem>
#include <memory>
#include <optional>
#include <string>
#include <vector>

#include "host/pictures/colour_path.h"
#include "host/pictures/file_bytes.h"
#include "host/pictures/picture.h"
#include "host/pictures/picture_formats.h"
#include "host/pictures/read_report.h"

namespace glimmerhost {

struct PluginOutcome {
  enum class Kind { kDone, kFailure, kMissingInput, kNoMemory };

  Kind kind = Kind::kDone;
  std::string what;  // what the exception would have said
};

// A colour configuration. As ColourConfig is.
class PluginColours {
 public:
  PluginColours() = default;
  virtual ~PluginColours() = default;
  PluginColours(const PluginColours&) = delete;
  PluginColours& operator=(const PluginColours&) = delete;

  virtual std::vector<std::string> Names() const = 0;
  virtual bool Knows(const std::string& name) const = 0;
  virtual PluginOutcome Path(const std::string& in, const std::string& out,
                             std::shared_ptr<const ColourPath>* path) const = 0;
  virtual std::vector<std::string> Displays() const = 0;
  virtual std::vector<std::string> Views(const std::string& display) const = 0;
  virtual PluginOutcome DisplayPath(const std::string& in, const std::string& display,
                                    const std::string& view,
                                    std::shared_ptr<const ColourTransform>* path) const = 0;
};

// Any thread may call. Results are set only where the outcome is kDone.
class PicturePlugin {
 public:
  PicturePlugin() = default;
  virtual ~PicturePlugin() = default;
  PicturePlugin(const PicturePlugin&) = delete;
  PicturePlugin& operator=(const PicturePlugin&) = delete;

  // As the functions of picture_formats.h are.
  virtual PluginOutcome FormatOf(const std::filesystem::path& file,
                                 std::optional<OutputFormat>* format) const = 0;
  virtual PluginOutcome Read(const std::filesystem::path& file, const ReadOptions& options,
                             Picture* picture, ReadReport* report) const = 0;

  virtual PluginOutcome ReadHead(const std::filesystem::path& file, PictureHead* head) const = 0;

  // As CompletePlugged.
  virtual PluginOutcome Complete(const std::filesystem::path& file, const ReadOptions& options,
                                 Picture* picture, ReadReport* report) const = 0;

  //   bytes  the output's file, just made; closed when all is written
  virtual PluginOutcome Write(const OutputFile& file, FileBytes* bytes, const OutputFormat& format,
                              const Picture& picture, const Coding& coding,
                              std::vector<NotCarried>* lost) const = 0;

  virtual PluginOutcome LoadColours(const std::filesystem::path& file,
                                    std::unique_ptr<const PluginColours>* colours) const = 0;
};

// The one name that the plug-in exports, and what it is. Null for a program of another version,
// whose objects may be laid out otherwise.
inline constexpr const char* kPicturePluginEntry = "glimmerhostPicturePlugin";
using PicturePluginEntry = const PicturePlugin*(const char* version);

}  // namespace glimmerhost
