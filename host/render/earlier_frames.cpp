// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/earlier_frames.h"

#include <optional>
#include <utility>

#include "host/render/arithmetic.h"
#include "host/render/frame_digest.h"
#include "host/render/frame_work.h"
#include "host/shots/file_hash.h"

namespace glimmerhost {

EarlierFrames::EarlierFrames(const ShotSettings& settings, const lx::Footprint& engine,
                             Manifest* manifest, ValuesOf valuesOf)
    : settings_(settings), engine_(engine), manifest_(manifest), valuesOf_(std::move(valuesOf)) {}

EarlierFrame EarlierFrames::Find(const FrameFiles& files, const FileState& fromPipe) const {
  if (!OutputExists(files)) {
    return EarlierFrame::kNone;
  }
  if (manifest_ == nullptr) {
    return EarlierFrame::kCurrent;
  }
  const std::string hash = FileHash(files.output);
  if (!manifest_->Explains(files.frame, hash)) {
    return EarlierFrame::kUnknown;
  }
  const std::optional<ManifestEntry> line = manifest_->Last(files.frame);
  return line->outputHash == hash && IsCurrent(files, fromPipe, *line) ? EarlierFrame::kCurrent
                                                                       : EarlierFrame::kStale;
}

std::string EarlierFrames::OtherArithmetic(int frame) const {
  const std::optional<ManifestEntry> line =
      manifest_ == nullptr ? std::nullopt : manifest_->Last(frame);
  if (!line) {
    return {};
  }
  const std::string own = line->precision == "float" ? FloatArithmetic() : settings_.arithmetic;
  return line->arithmetic == own ? std::string() : line->arithmetic;
}

// The input first: where it is the same, its size is known without reading it, and so are the
// values.
bool EarlierFrames::IsCurrent(const FrameFiles& files, const FileState& fromPipe,
                              const ManifestEntry& line) const {
  const auto before = line.sources.find(kInputSource);
  if (line.digest.empty() || before == line.sources.end()) {
    return false;
  }
  const FileState input =
      files.input == kPipe ? fromPipe : StateOfFile(files.input, before->second);
  if (input.hash != before->second.hash) {
    return false;
  }
  const std::map<std::string, Value> values = valuesOf_(files.frame, line.width, line.height);
  std::map<std::string, FileState> sources = {{kInputSource, input}};
  for (const auto& [name, file] : SourceFiles(files, values)) {
    const auto known = line.sources.find(name);
    if (name != kInputSource) {
      sources[name] = StateOfFile(file, known == line.sources.end() ? FileState() : known->second);
    }
  }
  return FrameDigest(WhatDecides(settings_, engine_, files, values, sources)) == line.digest;
}

}  // namespace glimmerhost
