// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/frame_digest.h"

#include <variant>

#include "host/looks/keys.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

// With all digits: what people read may leave some out.
std::string Exactly(const Value& value) {
  return std::visit([](auto one) { return Shortest(static_cast<double>(one)); }, value);
}

}  // namespace

std::map<std::string, std::filesystem::path> SourceFiles(
    const FrameFiles& files, const std::map<std::string, Value>& values) {
  std::map<std::string, std::filesystem::path> sources;
  if (files.input != kPipe) {
    sources[kInputSource] = files.input;
  }
  if (!files.spread.empty() && ShapeOf(values) == Shape::kImage) {
    sources[kSpreadSource] = files.spread;
  }
  if (!files.mask.empty()) {
    sources[kMaskSource] = files.mask;
  }
  return sources;
}

std::vector<std::pair<std::string, std::string>> WhatDecides(
    const ShotSettings& settings, const lx::Footprint& engine, const FrameFiles& files,
    const std::map<std::string, Value>& values, const std::map<std::string, FileState>& sources) {
  std::vector<std::pair<std::string, std::string>> decides;
  for (const auto& [name, version] : settings.versions) {
    // A farm's machines have other files of a module for each system and processor. Earlier lines
    // tell of no more than the file.
    if (name != kModuleVersion || !settings.versions.contains(kEngineVersion)) {
      decides.emplace_back("version of " + name, version);
    }
  }
  decides.emplace_back("engine", engine.name);
  for (const auto& [key, value] : values) {
    decides.emplace_back(key, Exactly(value));
  }
  for (const auto& [name, state] : sources) {
    decides.emplace_back("file of " + name, state.hash);
  }
  decides.emplace_back("alpha", settings.premultiplied ? "premultiplied" : "as-is");
  decides.emplace_back("bits", BitsWord(settings.coding));
  decides.emplace_back("compression", settings.coding.compression);
  decides.emplace_back("quality", std::to_string(settings.coding.quality));
  decides.emplace_back("pixel-aspect", std::to_string(settings.pixelAspect.first) + ":" +
                                           std::to_string(settings.pixelAspect.second));
  decides.emplace_back("range", settings.reading.range.Text());
  for (const std::string& pattern : settings.reading.blurChannels) {
    decides.emplace_back("blur-channels", pattern);
  }
  if (settings.reading.colours) {
    decides.emplace_back("colours", settings.reading.colours->identity);
  }
  decides.emplace_back("precision", PrecisionText(settings.reading.precision));
  decides.emplace_back("centred", settings.centred ? "on" : "off");
  decides.emplace_back("carry-psf", settings.carryPsf ? "on" : "off");
  decides.emplace_back("format", files.output.extension().string());
  return decides;
}

// Each with its length, so that no two lists make one text.
std::string FrameDigest(const std::vector<std::pair<std::string, std::string>>& decides) {
  std::string all;
  for (const auto& [name, value] : decides) {
    for (const std::string* text : {&name, &value}) {
      all += std::to_string(text->size()) + ":" + *text;
    }
  }
  return TextHash(all);
}

}  // namespace glimmerhost
