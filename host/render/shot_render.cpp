// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/shot_render.h"

#include <future>
#include <utility>

#include "host/render/frame_work.h"
#include "host/render/writer.h"
#include "host/support/text.h"

namespace glimmerhost {

ShotRender::ShotRender(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
                       const EffectModule& module, Manifest* manifest, ShotStreams streams)
    : page_(page),
      settings_(settings),
      engine_(module.Engine()),
      manifest_(manifest),
      streams_(std::move(streams)),
      pipe_(streams_.in, streams_.inName),
      loader_(page, settings, plan, engine_, manifest, &pipe_),
      renderer_(module, settings) {}

void ShotRender::Run(ShotReport* report) {
  Writer writer(page_, settings_, engine_, manifest_, report, streams_);
  FrameChannel loaded(kWaitingFrames);
  FrameChannel rendered(kWaitingFrames);
  auto loading = std::async(std::launch::async, [&] { loader_.Run(&loaded); });
  // Also where no second thread can be had: the first one would wait for ever.
  const ClosedAtEnd end(&loaded, &rendered);
  auto writing = std::async(std::launch::async, [&] { writer.Run(&rendered); });
  renderer_.Run(&loaded, &rendered);
  loading.get();
  writing.get();
  if (const std::size_t skipped = report->Count(FrameState::kSkipped);
      skipped > 0 && manifest_ == nullptr) {
    report->Remark(Counted(skipped, "frame") + (skipped == 1 ? " was" : " were") +
                   " there already; without --manifest nothing is known of how");
  }
  // Not before all is written: whoever fills the pipe may keep it open, and wait for that.
  if (loader_.LeavesPictures()) {
    report->Remark(pipe_.Name() + " holds more pictures than were asked for");
  }
}

}  // namespace glimmerhost
