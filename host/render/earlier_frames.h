// SPDX-License-Identifier: BSD-3-Clause
// EarlierFrames: what a run finds of its frames that is there already, and whether it still counts.
#pragma once

#include <functional>
#include <map>
#include <string>

#include "fftlib/backends/footprint.h"
#include "host/looks/parameter.h"
#include "host/render/shot_settings.h"
#include "host/shots/manifest.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

enum class EarlierFrame {
  kNone,     // no output, or an empty file that is in its way
  kCurrent,  // as it would be rendered now; without a manifest, any output
  kStale,    // one that a run with this manifest has written, and that would come out otherwise now
  kUnknown,  // one that no line of the manifest tells of
};

class EarlierFrames {
 public:
  // The values of a frame whose input has that size.
  using ValuesOf = std::function<std::map<std::string, Value>(int frame, int width, int height)>;

  // All must outlive it.
  //   manifest  null where none is kept
  EarlierFrames(const ShotSettings& settings, const lx::Footprint& engine, Manifest* manifest,
                ValuesOf valuesOf);

  // Reads the output, and of other files only those whose size or time is not as in the line.
  //   fromPipe  the state of the picture of a pipe; empty for an input that is a file
  // Throws MissingInput for an input that is not there, and Failure.
  EarlierFrame Find(const FrameFiles& files, const FileState& fromPipe) const;

  // The arithmetic that has made a frame that is there, where the manifest tells that, and another
  // than this run's; empty otherwise.
  std::string OtherArithmetic(int frame) const;

 private:
  bool IsCurrent(const FrameFiles& files, const FileState& fromPipe,
                 const ManifestEntry& line) const;

  const ShotSettings& settings_;
  const lx::Footprint& engine_;
  Manifest* manifest_;
  ValuesOf valuesOf_;
};

}  // namespace glimmerhost
