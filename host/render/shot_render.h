// SPDX-License-Identifier: BSD-3-Clause
// A shot through the effect, frame by frame. While the effect works on one, the next is read and
// the one before is written.
#pragma once

#include "host/looks/page.h"
#include "host/module/effect_module.h"
#include "host/pictures/pam_stream.h"
#include "host/render/loader.h"
#include "host/render/renderer.h"
#include "host/render/shot_report.h"
#include "host/render/shot_settings.h"
#include "host/render/shot_streams.h"
#include "host/shots/manifest.h"
#include "host/shots/shot_plan.h"

namespace glimmerhost {

// Puts loader, renderer and writer together. What each of them owns and does stands in its header.
class ShotRender {
 public:
  // All must outlive this.
  //   manifest  null where none is asked for
  ShotRender(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
             const EffectModule& module, Manifest* manifest, ShotStreams streams = {});

  // Renders the plan's frames in their order; the effect works on the calling thread. A frame that
  // fails has no output; without keepGoing it is the last. Throws UsageError where the command is
  // wrong for all of them, and std::system_error where no thread can be had for the loader or the
  // writer; neither is running then.
  //   report  is given one frame at a time, in order, and not by the calling thread
  void Run(ShotReport* report);

 private:
  const Page& page_;
  const ShotSettings& settings_;
  const lx::Footprint& engine_;
  Manifest* manifest_;
  ShotStreams streams_;
  PamReader pipe_;
  Loader loader_;
  Renderer renderer_;
};

}  // namespace glimmerhost
