// SPDX-License-Identifier: BSD-3-Clause
// glimmerhost render: pictures through the effect, one or a shot of them.
#include <cstddef>
#include <optional>
#include <ostream>
#include <vector>

#include "host/films/film_reader.h"
#include "host/films/film_writer.h"
#include "host/glimmerhost/command.h"
#include "host/glimmerhost/processors.h"
#include "host/glimmerhost/render_plan.h"
#include "host/looks/page_file.h"
#include "host/module/effect_module.h"
#include "host/render/arithmetic.h"
#include "host/render/explain.h"
#include "host/render/frame_digest.h"
#include "host/shots/file_hash.h"
#include "host/shots/manifest.h"
#include "host/support/failure.h"
#include "host/support/system.h"

namespace glimmerhost {
namespace {

// The films at both ends of a render, where there are any.
class FilmEnds {
 public:
  explicit FilmEnds(const RenderPlan& plan) {
    if (!plan.film) {
      return;
    }
    std::vector<int> frames;
    for (const FrameFiles& files : plan.shot.files) {
      frames.push_back(files.frame);
    }
    const bool isWhole = frames.size() == static_cast<std::size_t>(plan.film->frames);
    if (!plan.filmOutput.empty()) {
      writer_.emplace(plan.filmOutput, *plan.film, isWhole, plan.settings.overwrite);
      streams_.out = writer_->Stream();
      streams_.outName = plan.filmOutput.string();
    }
    reader_.emplace(*plan.film, frames);
    streams_.in = reader_->Stream();
    streams_.inName = plan.film->file.string();
  }

  const ShotStreams& Streams() const { return streams_; }

  // A film of fewer frames than were asked for is none. What ffmpeg says of a damaged one is more
  // than that it ended too early.
  void Finish(std::size_t failed, std::size_t missing) {
    if (reader_) {
      reader_->Finish(failed == 0 || missing > 0);
    }
    if (writer_ && failed + missing == 0) {
      writer_->Finish();
    }
  }

 private:
  std::optional<FilmWriter> writer_;
  std::optional<FilmReader> reader_;
  ShotStreams streams_;
};

void RenderShot(const Page& page, RenderPlan plan, ShotReport* report) {
  const EffectModule module(plan.module);
  std::optional<Manifest> manifest;
  if (!plan.manifest.empty()) {
    plan.settings.versions = {{"glimmerhost", GLIMMERHOST_VERSION},
                              {kModuleVersion, FileHash(plan.module.file)},
                              {kEngineVersion, NumberedEngine(plan.module)}};
    plan.settings.arithmetic = ArithmeticOf(module);
    if (plan.shot.span.IsKnown()) {
      plan.settings.shot = ShowSpan(plan.shot.span);
    }
    manifest.emplace(plan.manifest, plan.settings.skipExisting, plan.settings.overwrite);
  }
  FilmEnds films(plan);
  ShotRender(page, plan.settings, plan.shot, module, manifest ? &*manifest : nullptr,
             films.Streams())
      .Run(report);
  films.Finish(report->Count(FrameState::kFailed), report->Count(FrameState::kMissing));
}

int Render(const Page& page, const RenderPlan& plan) {
  SaveLook(page, plan);
  UseBinaryStreams();
  ShotReport report(plan.report, plan.shot.files.size(), plan.shot.isShot);
  report.RemarkOfShot(plan.remarks);
  RenderShot(page, plan, &report);
  report.Finish();
  return report.Count(FrameState::kFailed) > 0    ? kExitFailed
         : report.Count(FrameState::kMissing) > 0 ? kExitMissing
                                                  : kExitDone;
}

class RenderCommand final : public Command {
 public:
  void AddOptions(OptionSet* options) override {
    page_ = LoadPage();
    AddRenderOptions(options, page_, &options_);
    options->Value("--chunk", &options_.chunk,
                   {kShotGroup, "K/N",
                    "Only the K-th of N parts of the frames. Of more parts than frames, the last "
                    "are empty, and done at once"});
    AddEngine(options, &options_.engine);
  }

  // Of a frame that failed there is no output, and nothing is left of one.
  int Run(std::ostream& out) override {
    const RenderPlan plan = PlanRender(options_, ReadLookOf(page_, options_));
    if (plan.dryRun) {
      ListFiles(plan.shot, out);
      return kExitDone;
    }
    NarrowProcessors(options_.threads);
    if (plan.explain && plan.shot.files.empty()) {
      out << "Frames              none: the chunk is empty\n";
      return kExitDone;
    }
    if (plan.explain) {
      SayRemarks(plan);
      Explain(*plan.module.engine, page_, plan.settings, plan.shot, out);
      return kExitDone;
    }
    return Render(page_, plan);
  }

 private:
  Page page_;
  RenderOptions options_;
};

}  // namespace

std::unique_ptr<Command> MakeRenderCommand() { return std::make_unique<RenderCommand>(); }

}  // namespace glimmerhost
