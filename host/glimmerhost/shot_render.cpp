#include "host/glimmerhost/shot_render.h"

#include <chrono>
#include <exception>
#include <new>
#include <system_error>
#include <variant>

#include "host/glimmerhost/alpha.h"
#include "host/glimmerhost/frame_checks.h"
#include "host/glimmerhost/frame_render.h"
#include "host/glimmerhost/text.h"
#include "host/shots/file_hash.h"
#include "host/support/failure.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// Does the work of a frame. What goes wrong becomes the frame's.
template <class FrameWork>
void Try(FrameReport* report, const FrameWork& work) {
  try {
    work();
  } catch (const UsageError&) {
    throw;
  } catch (const MissingInput& fault) {
    report->state = FrameState::kMissing;
    report->fault = fault.what();
  } catch (const std::bad_alloc&) {
    report->state = FrameState::kFailed;
    report->fault = "there is not enough memory for this picture";
  } catch (const std::exception& fault) {
    report->state = FrameState::kFailed;
    report->fault = fault.what();
  }
}

}  // namespace

void ShotRender::Run(ShotReport* report) {
  for (const FrameFiles& files : plan_.files) {
    Work work;
    work.files = files;
    work.report.frame = files.frame;
    work.report.output = files.output.string();
    Try(&work.report, [&] {
      Load(&work);
      if (work.report.state == FrameState::kDone) {
        Render(&work);
        Write(&work);
      }
    });
    report->Add(work.report);
    const FrameState state = work.report.state;
    if (!settings_.keepGoing && (state == FrameState::kFailed || state == FrameState::kMissing)) {
      break;
    }
  }
}

void ShotRender::Render(Work* work) {
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  work->result = renderer_.Render(work->input);
  work->report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
}

void ShotRender::Load(Work* work) {
  std::error_code error;
  if (settings_.skipExisting && fs::exists(work->files.output, error)) {
    work->report.state = FrameState::kSkipped;
    return;
  }
  work->output = std::make_unique<PictureOutput>(work->files.output, settings_.overwrite);
  if (manifest_ != nullptr) {
    work->inputHash = FileHash(work->files.input);
  }
  work->picture = ReadPicture(work->files.input, settings_.reading, &work->found);
  work->report.remarks = work->found.lines;
  Picture& picture = work->picture;
  FrameInput& input = work->input;
  input.frame = work->files.frame;
  input.values = ValuesOf(work->files.frame, picture);
  CheckGrid(input.values, picture.width, picture.height);
  input.pixelAspect =
      settings_.pixelAspect.first == 0 ? picture.pixelAspect : settings_.pixelAspect;
  input.spread = SpreadOf(work);
  const double emphasis = std::get<double>(input.values.at("PRM_Emphasis"));
  // The inverse curve turns what rounding leaves of a black area into light: half a 16-bit step
  // at an emphasis of 80, a hundred at 100.
  constexpr double kQuiet = 75.0;
  if (emphasis > kQuiet && !warnedOfNoise_) {
    warnedOfNoise_ = true;
    work->report.remarks.push_back("an emphasis of " + Shortest(emphasis) +
                                   " shows rounding noise in dark areas; up to 75 none can be "
                                   "seen");
  }
  work->alphaBefore = picture.alpha;
  if (settings_.premultiplied) {
    Premultiply(&picture);
  }
  input.source = quantel::cPtr<FrameImage>(new FrameImage(picture));
}

void ShotRender::Write(Work* work) const {
  CheckRendered(work->input, work->result.Object());
  Picture& picture = work->picture;
  work->result->CopyTo(&picture);
  if (settings_.premultiplied) {
    SettleAlpha(*work->output, work->alphaBefore, &picture);
  }
  work->output->Write(picture, settings_.bits == 0 ? picture.bits : settings_.bits);
  if (manifest_ != nullptr) {
    Note(*work);
  }
}

void ShotRender::Note(const Work& work) const {
  ManifestEntry entry;
  entry.frame = work.files.frame;
  entry.input = work.files.input.string();
  entry.inputHash = work.inputHash;
  entry.output = work.files.output.string();
  entry.outputHash = FileHash(work.files.output);
  for (const auto& [key, value] : work.input.values) {
    entry.parameters[key] = page_.Find(key).Show(value);
  }
  entry.versions = settings_.versions;
  entry.seconds = work.report.seconds;
  entry.clippedSamples = work.found.cut + work.found.infinite;
  entry.notNumbers = work.found.notNumbers;
  manifest_->Add(entry);
}

std::map<std::string, Value> ShotRender::ValuesOf(int frame, const Picture& picture) {
  const std::pair<int, int> size{picture.width, picture.height};
  if (!values_ || valuesSize_ != size) {
    values_ = std::make_unique<ShotValues>(page_, settings_.layers, picture.width, picture.height,
                                           ShotSpan{plan_.lowest, plan_.highest});
    valuesSize_ = size;
  }
  return values_->At(frame);
}

quantel::cPtr<FrameImage> ShotRender::SpreadOf(Work* work) {
  const fs::path& file = work->files.spread;
  const std::pair<int, int> size{work->picture.width, work->picture.height};
  if (!spread_ || file != spreadFile_ || size != spreadSize_) {
    spread_ = OpenSpread(file.string(), size.first, size.second, settings_.premultiplied,
                         &work->report.remarks);
    spreadFile_ = file;
    spreadSize_ = size;
  }
  return spread_;
}

}  // namespace glimmerhost
