// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/jobs/shot_standing.h"

#include <algorithm>
#include <exception>
#include <filesystem>
#include <memory>
#include <string>
#include <system_error>
#include <utility>
#include <vector>

#include "fftlib/backends/footprint.h"
#include "host/looks/keyframed_values.h"
#include "host/looks/units.h"
#include "host/module/module_choice.h"
#include "host/pictures/alpha.h"
#include "host/pictures/picture_formats.h"
#include "host/render/frame_digest.h"
#include "host/shots/file_sequence.h"
#include "host/shots/manifest.h"
#include "host/support/utf8_path.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// As the program settles what it is asked for.
ShotSettings SettingsOf(const Page& page, const JobInput& input, const RenderTarget& target) {
  ShotSettings settings;
  settings.layers = {{"", input.look}};
  const PictureLook pictures = PictureLookOf(page, settings.layers);
  settings.premultiplied = ParsePremultiplied(kAlpha, pictures.alpha);
  if (!pictures.pixelAspect.empty()) {
    settings.pixelAspect = ParseRatio(kPixelAspect, pictures.pixelAspect);
  }
  const bool isEngineNamed = !target.engine.empty() && target.engine != kDefaultEngine;
  settings.reading.precision = isEngineNamed              ? Precision::k16
                               : target.precision.empty() ? Precision::kByFile
                                                          : ParsePrecision("", target.precision);
  ParseBits(target.bits, &settings.coding);
  settings.coding.compression = target.compression;
  settings.coding.quality = target.quality.empty() ? 0 : ParseQuality(target.quality);
  if (settings.coding != Coding()) {
    if (const auto format = FormatOf(Utf8Path(target.output))) {
      SettleCoding(*format, &settings.coding);
    }
  }
  return settings;
}

// The manifest and those of chunks, the latest last.
std::vector<fs::path> Manifests(const fs::path& manifest) {
  const std::string stem = manifest.stem().string() + ".";
  const fs::path folder = manifest.parent_path().empty() ? "." : manifest.parent_path();
  std::vector<std::pair<fs::file_time_type, fs::path>> found;
  std::error_code error;
  for (fs::directory_iterator entry(folder, error), end; !error && entry != end;
       entry.increment(error)) {
    const fs::path& file = entry->path();
    if (file.extension() == manifest.extension() &&
        (file.filename() == manifest.filename() || file.filename().string().starts_with(stem))) {
      std::error_code unknown;
      found.emplace_back(fs::last_write_time(file, unknown), file);
    }
  }
  std::sort(found.begin(), found.end());
  std::vector<fs::path> files;
  files.reserve(found.size());
  for (auto& [time, file] : found) {
    files.push_back(std::move(file));
  }
  return files;
}

class Standing {
 public:
  Standing(const Page& page, const JobInput& input, const RenderTarget& target)
      : page_(page),
        input_(input),
        settings_(SettingsOf(page, input, target)),
        spread_("--spread", PictureLookOf(page, settings_.layers).spread),
        engine_(*lx::FindFootprint(target.engine.empty() ? kDefaultEngine : target.engine)),
        files_("INPUT", input.input),
        outputs_("-o", target.output) {
    for (const fs::path& file : Manifests(Utf8Path(target.manifest))) {
      try {
        for (auto& [frame, entry] : ReadManifest(file)) {
          entries_[frame] = std::move(entry);
        }
      } catch (const std::exception&) {
        // One that is just being begun, or that is none: its frames are not known.
        continue;
      }
    }
  }

  FrameStanding Of(int frame) {
    std::error_code error;
    const fs::path output = outputs_.File(frame);
    if (!fs::is_regular_file(output, error) || fs::file_size(output, error) == 0) {
      return FrameStanding::kToDo;
    }
    const auto entry = entries_.find(frame);
    if (entry == entries_.end()) {
      return FrameStanding::kUnknown;
    }
    return IsCurrent(entry->second) ? FrameStanding::kCurrent : FrameStanding::kStale;
  }

 private:
  const KeyframedValues& ValuesFor(int width, int height) {
    if (!values_ || size_ != std::pair(width, height)) {
      values_ =
          std::make_unique<KeyframedValues>(page_, settings_.layers, width, height, input_.span);
      size_ = {width, height};
    }
    return *values_;
  }

  bool IsCurrent(const ManifestEntry& entry) {
    const KeyframedValues& values = ValuesFor(entry.width, entry.height);
    std::map<std::string, Value> deciding = values.At(entry.frame);
    deciding[kMix] = values.MixAt(entry.frame);
    deciding["grow"] = 0;
    FrameFiles files{entry.frame, files_.File(entry.frame), outputs_.File(entry.frame), {}};
    if (!spread_.Name().empty()) {
      files.spread = spread_.File(entry.frame);
    }
    std::map<std::string, FileState> sources;
    for (const auto& [name, file] : SourceFiles(files, deciding)) {
      const auto known = entry.sources.find(name);
      sources[name] = StateOfFile(file, known == entry.sources.end() ? FileState() : known->second);
    }
    settings_.versions = entry.versions;
    return FrameDigest(WhatDecides(settings_, engine_, files, deciding, sources)) == entry.digest;
  }

  const Page& page_;
  const JobInput& input_;
  ShotSettings settings_;
  FileSequence spread_;
  const lx::Footprint& engine_;
  FileSequence files_;
  FileSequence outputs_;
  std::map<int, ManifestEntry> entries_;
  std::unique_ptr<KeyframedValues> values_;
  std::pair<int, int> size_;
};

}  // namespace

std::map<int, FrameStanding> StandingOf(const Page& page, const JobInput& input,
                                        const RenderTarget& target) {
  std::map<int, FrameStanding> standing;
  for (const int frame : target.frames) {
    standing[frame] = FrameStanding::kToDo;
  }
  try {
    Standing shot(page, input, target);
    for (auto& [frame, one] : standing) {
      try {
        one = shot.Of(frame);
      } catch (const std::exception&) {
        one = FrameStanding::kToDo;
      }
    }
  } catch (const std::exception&) {
    return standing;
  }
  return standing;
}

}  // namespace glimmerhost
