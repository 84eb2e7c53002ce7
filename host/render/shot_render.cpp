#include "host/render/shot_render.h"

#include <chrono>
#include <cstdio>
#include <future>
#include <new>
#include <system_error>
#include <variant>

#include "host/looks/keys.h"
#include "host/module/frame_checks.h"
#include "host/module/second_clip.h"
#include "host/pictures/alpha.h"
#include "host/shots/file_hash.h"
#include "host/shots/steady_file.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {
namespace {

namespace fs = std::filesystem;

// How many frames wait between two threads. One is enough: none waits long for the effect.
constexpr std::size_t kWaiting = 1;

// What a PAM picture holds.
const OutputFormat kPamFormat{"pam", true, true, false, false};

// Whether a picture is there. A folder of that name, or an empty file that somebody made to have
// the name, is none; nothing else is looked at.
bool IsThere(const fs::path& output) {
  std::error_code error;
  return fs::is_regular_file(output, error) && fs::file_size(output, error) > 0 && !error;
}

// However a thread's loop ends, those beside it must not wait for it.
template <class Channel>
class ClosedAtEnd {
 public:
  ClosedAtEnd(Channel* from, Channel* to) : from_(from), to_(to) {}
  ~ClosedAtEnd() {
    if (from_ != nullptr) {
      from_->Abandon();
    }
    if (to_ != nullptr) {
      to_->Close();
    }
  }
  ClosedAtEnd(const ClosedAtEnd&) = delete;
  ClosedAtEnd& operator=(const ClosedAtEnd&) = delete;

 private:
  Channel* from_;
  Channel* to_;
};

}  // namespace

ShotRender::ShotRender(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
                       const EffectModule& module, Manifest* manifest)
    : page_(page),
      settings_(settings),
      plan_(plan),
      engine_(module.Engine()),
      renderer_(module, settings.carryPsf),
      manifest_(manifest),
      pipe_(stdin, "standard input") {}

void ShotRender::Run(ShotReport* report) {
  Works loaded(kWaiting);
  Works rendered(kWaiting);
  auto loading = std::async(std::launch::async, [&] { LoadAll(&loaded); });
  // Also where no second thread can be had: the first one would wait for ever.
  const ClosedAtEnd<Works> end(&loaded, &rendered);
  auto writing = std::async(std::launch::async, [&] { WriteAll(&rendered, report); });
  RenderAll(&loaded, &rendered);
  loading.get();
  writing.get();
  // Not before all is written: whoever fills the pipe may keep it open, and wait for that.
  if (taken_ > 0 && taken_ == plan_.files.size() && !pipe_.IsAtEnd()) {
    report->Remark(pipe_.Name() + " holds more pictures than were asked for");
  }
}

// Does the work of a frame. What goes wrong becomes the frame's.
template <class FrameWork>
void ShotRender::Try(Work* work, const FrameWork& frameWork) {
  FrameReport& report = work->report;
  if (report.state == FrameState::kFailed || report.state == FrameState::kMissing || work->usage) {
    return;
  }
  try {
    frameWork();
  } catch (const UsageError&) {
    work->usage = std::current_exception();
  } catch (const MissingInput& fault) {
    report.state = FrameState::kMissing;
    report.fault = fault.what();
  } catch (const std::bad_alloc&) {
    report.state = FrameState::kFailed;
    report.fault = "not enough memory for this picture";
  } catch (const std::exception& fault) {
    report.state = FrameState::kFailed;
    report.fault = fault.what();
  }
}

bool ShotRender::IsOver(const Work& work) const {
  const FrameState state = work.report.state;
  return work.isLast || work.usage ||
         (!settings_.keepGoing && (state == FrameState::kFailed || state == FrameState::kMissing));
}

void ShotRender::LoadAll(Works* loaded) {
  const ClosedAtEnd<Works> end(nullptr, loaded);
  for (std::size_t place = 0;; ++place) {
    const std::optional<FrameFiles> files = FilesAt(place);
    if (!files) {
      return;
    }
    auto work = std::make_unique<Work>();
    work->files = *files;
    work->report.frame = files->frame;
    work->report.output = files->output.string();
    Try(work.get(), [&] { Load(work.get()); });
    const bool isOver = IsOver(*work);
    if (work->isNone || !loaded->Put(std::move(work)) || isOver) {
      return;
    }
  }
}

void ShotRender::RenderAll(Works* loaded, Works* rendered) {
  const ClosedAtEnd<Works> end(loaded, rendered);
  while (std::optional<std::unique_ptr<Work>> work = loaded->Take()) {
    Try(work->get(), [&] {
      if ((*work)->report.state == FrameState::kDone) {
        Render(work->get());
      }
    });
    const bool isOver = IsOver(**work);
    if (!rendered->Put(std::move(*work)) || isOver) {
      return;
    }
  }
}

void ShotRender::WriteAll(Works* rendered, ShotReport* report) {
  const ClosedAtEnd<Works> end(rendered, nullptr);
  while (const std::optional<std::unique_ptr<Work>> taken = rendered->Take()) {
    Work& work = **taken;
    Try(&work, [&] {
      if (work.report.state == FrameState::kDone) {
        Write(&work);
      }
      if (work.report.state == FrameState::kSkipped) {
        NoteFound(work);
      }
    });
    if (work.usage) {
      std::rethrow_exception(work.usage);
    }
    report->Add(work.report);
    if (IsOver(work)) {
      return;
    }
  }
}

std::optional<FrameFiles> ShotRender::FilesAt(std::size_t place) const {
  if (plan_.filesOf) {
    return plan_.filesOf(static_cast<int>(place) + 1);
  }
  return place < plan_.files.size() ? std::optional(plan_.files[place]) : std::nullopt;
}

void ShotRender::TakeFromPipe(Work* work) {
  // Behind what is broken no next picture can be found.
  work->isLast = true;
  std::optional<Picture> picture = pipe_.Next();
  if (!picture) {
    work->isNone = plan_.filesOf && taken_ > 0;
    if (!work->isNone) {
      throw MissingInput(pipe_.Name() +
                         (taken_ == 0 ? ": it holds no picture"
                                      : ": it ends after " + std::to_string(taken_) + " pictures"));
    }
    return;
  }
  ++taken_;
  work->isLast = false;
  work->picture = std::move(*picture);
}

void ShotRender::TakePicture(Work* work) {
  const fs::path& file = work->files.input;
  const bool hashed = manifest_ != nullptr;
  if (file == kPipe) {
    work->inputHash = hashed ? SamplesHash(work->picture.samples) : "";
    return;
  }
  ReadOptions options = settings_.reading;
  options.keptFor = work->output ? KeptFor(work->output->Format()) : kNoFormat;
  ReadSteadily(file, [&] {
    work->picture = ReadPicture(file, options, &work->found);
    work->inputHash = hashed ? FileHash(file) : "";
  });
  work->report.remarks = work->found.lines;
  work->report.notCarried = work->found.notCarried;
}

void ShotRender::Load(Work* work) {
  if (work->files.input == kPipe) {
    TakeFromPipe(work);
    if (work->isNone) {
      return;
    }
  }
  if (settings_.skipExisting && IsThere(work->files.output)) {
    work->report.state = FrameState::kSkipped;
    return;
  }
  if (work->files.output != kPipe) {
    work->output = std::make_unique<PictureOutput>(work->files.output, settings_.overwrite);
  }
  TakePicture(work);
  Picture& picture = work->picture;
  FrameInput& input = work->input;
  input.frame = work->files.frame;
  input.values = ValuesOf(work->files.frame, picture);
  input.pixelAspect =
      settings_.pixelAspect.first == 0 ? picture.pixelAspect : settings_.pixelAspect;
  input.spread = SpreadOf(work);
  const double emphasis = std::get<double>(input.values.at(kEmphasisKey));
  if (ShowsNoise(engine_, emphasis) && !warnedOfNoise_) {
    warnedOfNoise_ = true;
    work->report.remarks.push_back("an emphasis of " + Shortest(emphasis) +
                                   " shows rounding noise in dark areas; up to 75, and with the "
                                   "engine fast at any, none can be seen");
  }
  work->alphaBefore = picture.alpha;
  if (settings_.premultiplied) {
    Premultiply(&picture);
  }
  input.source = quantel::cPtr<FrameImage>(new FrameImage(picture));
}

void ShotRender::Render(Work* work) {
  // Not earlier: the frame before has given back by now what it took.
  CheckGrid(engine_, work->input.values, work->picture.width, work->picture.height,
            renderer_.HeldBytes());
  using Clock = std::chrono::steady_clock;
  const Clock::time_point start = Clock::now();
  work->result = renderer_.Render(work->input);
  work->report.seconds = std::chrono::duration<double>(Clock::now() - start).count();
}

void ShotRender::Write(Work* work) const {
  CheckRendered(work->input, work->result.Object());
  Picture& picture = work->picture;
  work->result->CopyTo(&picture);
  const bool toPipe = !work->output;
  if (settings_.premultiplied) {
    SettleAlpha(toPipe ? kPamFormat : work->output->Format(), work->alphaBefore, &picture);
  }
  if (toPipe) {
    WritePam(picture, stdout, "standard output");
  } else if (!WriteFile(work)) {
    work->report.state = FrameState::kSkipped;
    return;
  }
  if (manifest_ != nullptr) {
    Note(*work);
  }
}

// False if another program has made the file since it was looked for, and that was asked for.
bool ShotRender::WriteFile(Work* work) const {
  const Picture& picture = work->picture;
  try {
    work->output->Write(picture, settings_.bits == 0 ? picture.bits : settings_.bits,
                        &work->report.notCarried);
  } catch (const Failure&) {
    if (!settings_.skipExisting || settings_.overwrite || !IsThere(work->files.output)) {
      throw;
    }
    return false;
  }
  return true;
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
  entry.engine = engine_.name;
  entry.versions = settings_.versions;
  entry.seconds = work.report.seconds;
  entry.clippedSamples = work.found.cut + work.found.infinite;
  entry.notNumbers = work.found.notNumbers;
  manifest_->Add(entry);
}

// A run may have been killed between an output and its line, or had no manifest.
void ShotRender::NoteFound(const Work& work) const {
  if (manifest_ != nullptr && !manifest_->Has(work.files.frame)) {
    ManifestEntry entry;
    entry.frame = work.files.frame;
    entry.output = work.files.output.string();
    entry.outputHash = FileHash(work.files.output);
    manifest_->Add(entry);
  }
}

std::map<std::string, Value> ShotRender::ValuesOf(int frame, const Picture& picture) {
  const std::pair<int, int> size{picture.width, picture.height};
  if (!values_ || valuesSize_ != size) {
    values_ = std::make_unique<KeyframedValues>(page_, settings_.layers, picture.width,
                                                picture.height, SpanOf(plan_));
    valuesSize_ = size;
  }
  return values_->At(frame);
}

quantel::cPtr<FrameImage> ShotRender::SpreadOf(Work* work) {
  const fs::path& file = work->files.spread;
  const std::pair<int, int> size{work->picture.width, work->picture.height};
  if (!spread_ || file != spreadFile_ || size != spreadSize_) {
    spread_ =
        OpenSpread(file, size.first, size.second, settings_.premultiplied, &work->report.remarks);
    spreadFile_ = file;
    spreadSize_ = size;
  }
  return spread_;
}

}  // namespace glimmerhost
