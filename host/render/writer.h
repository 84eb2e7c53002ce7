// SPDX-License-Identifier: BSD-3-Clause
// Writer: writes rendered frames, notes them in the manifest and tells what became of each.
#pragma once

#include <filesystem>

#include "fftlib/backends/footprint.h"
#include "host/looks/page.h"
#include "host/render/frame_work.h"
#include "host/render/shot_report.h"
#include "host/render/shot_settings.h"
#include "host/render/shot_streams.h"
#include "host/shots/manifest.h"

namespace glimmerhost {

// The report is its own while it runs, as every output is: no other thread writes a file of the
// shot.
class Writer {
 public:
  // All must outlive it.
  //   engine    of the module that renders
  //   manifest  null where none is asked for
  Writer(const Page& page, const ShotSettings& settings, const lx::Footprint& engine,
         Manifest* manifest, ShotReport* report, const ShotStreams& streams);

  // Takes each frame, writes it unless it has failed or is skipped, and reports it, until one is
  // the last. Then the channel is abandoned. The loop of a thread, called once. Throws the
  // UsageError that a frame brings; that frame is not reported.
  void Run(FrameChannel* rendered);

 private:
  void Write(FrameWork* work) const;
  bool WriteFile(FrameWork* work) const;
  void Note(const FrameWork& work, const std::filesystem::path& finished) const;

  const Page& page_;
  const ShotSettings& settings_;
  const lx::Footprint& engine_;
  Manifest* manifest_;
  ShotReport* report_;
  const ShotStreams& streams_;
};

}  // namespace glimmerhost
