// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/loader.h"

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

namespace fs = std::filesystem;

namespace {

std::string SizeOf(const Picture& picture) {
  return std::to_string(picture.width) + " x " + std::to_string(picture.height);
}

}  // namespace

Loader::Loader(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
               const lx::Footprint& engine, bool hashed, PamReader* pipe)
    : page_(page),
      settings_(settings),
      plan_(plan),
      engine_(engine),
      hashed_(hashed),
      pipe_(pipe) {}

void Loader::Run(FrameChannel* loaded) {
  const ClosedAtEnd end(nullptr, loaded);
  for (std::size_t place = 0;; ++place) {
    const std::optional<FrameFiles> files = FilesAt(place);
    if (!files) {
      return;
    }
    auto work = std::make_unique<FrameWork>();
    work->files = *files;
    work->report.frame = files->frame;
    work->report.output = files->output.string();
    bool isFrame = true;
    DoPart(work.get(), [&] { isFrame = Load(work.get()); });
    const bool isLast = IsLastFrame(*work, settings_.keepGoing);
    if (!isFrame || !loaded->Put(std::move(work)) || isLast) {
      return;
    }
  }
}

bool Loader::LeavesPictures() {
  return taken_ > 0 && taken_ == plan_.files.size() && !pipe_->IsAtEnd();
}

std::optional<FrameFiles> Loader::FilesAt(std::size_t place) const {
  if (plan_.filesOf) {
    return plan_.filesOf(static_cast<int>(place) + 1);
  }
  return place < plan_.files.size() ? std::optional(plan_.files[place]) : std::nullopt;
}

// False where a pipe without a list of frames has come to its end.
bool Loader::Load(FrameWork* work) {
  CheckInShot(plan_, work->files.frame);
  // Before anything is skipped: a picture of the pipe stands between this frame and the next.
  if (work->files.input == kPipe && !TakeFromPipe(work)) {
    return false;
  }
  if (settings_.skipExisting && OutputExists(work->files)) {
    work->report.state = FrameState::kSkipped;
    return true;
  }
  if (work->files.output != kPipe) {
    work->output = std::make_unique<PictureOutput>(work->files.output, settings_.overwrite);
  }
  TakePicture(work);
  SettleInput(work);
  return true;
}

bool Loader::TakeFromPipe(FrameWork* work) {
  // Behind what is broken no next picture can be found.
  work->isLast = true;
  std::optional<Picture> picture = pipe_->Next();
  if (!picture) {
    // A pipe that holds no picture at all is a mistake, whatever was asked for.
    if (plan_.filesOf && taken_ > 0) {
      return false;
    }
    throw MissingInput(pipe_->Name() +
                       (taken_ == 0 ? ": it holds no picture"
                                    : ": it ends after " + std::to_string(taken_) + " pictures"));
  }
  ++taken_;
  work->isLast = false;
  work->picture = std::move(*picture);
  return true;
}

void Loader::TakePicture(FrameWork* work) {
  const fs::path& file = work->files.input;
  if (file == kPipe) {
    work->inputHash = hashed_ ? SamplesHash(work->picture.samples) : "";
    return;
  }
  ReadOptions options = settings_.reading;
  options.keptFor = work->output ? KeptFor(work->output->Format()) : kNoFormat;
  ReadSteadily(file, [&] {
    work->picture = ReadPicture(file, options, &work->found);
    work->inputHash = hashed_ ? FileHash(file) : "";
  });
  work->report.remarks = work->found.lines;
  work->report.notCarried = work->found.notCarried;
}

void Loader::SettleInput(FrameWork* work) {
  Picture& picture = work->picture;
  FrameInput& input = work->input;
  input.frame = work->files.frame;
  const KeyframedValues& values = ValuesFor(picture);
  input.values = values.At(work->files.frame);
  work->mix = values.MixAt(work->files.frame);
  input.pixelAspect =
      settings_.pixelAspect.first == 0 ? picture.pixelAspect : settings_.pixelAspect;
  input.spread = SpreadOf(work);
  work->mask = MaskOf(work);
  WarnOfNoise(work);
  WarnOfRange(work);
  work->alphaBefore = picture.alpha;
  if (settings_.premultiplied) {
    Premultiply(&picture);
  }
  input.source = quantel::cPtr<FrameImage>(new FrameImage(picture));
}

// Once for the shot: a thousand frames would say the same.
void Loader::WarnOfNoise(FrameWork* work) {
  const double emphasis = std::get<double>(work->input.values.at(kEmphasisKey));
  if (ShowsNoise(engine_, emphasis) && !warnedOfNoise_) {
    warnedOfNoise_ = true;
    work->report.remarks.push_back("an emphasis of " + Shortest(emphasis) +
                                   " shows rounding noise in dark areas; up to 75, and with the "
                                   "engine fast at any, none can be seen");
  }
}

void Loader::WarnOfRange(FrameWork* work) {
  const bool isIdle = !settings_.reading.range.IsPlain() && work->picture.range.IsPlain();
  if (isIdle && !warnedOfRange_) {
    warnedOfRange_ = true;
    work->report.remarks.emplace_back("--range has no effect on a picture of whole numbers");
  }
}

const KeyframedValues& Loader::ValuesFor(const Picture& picture) {
  const std::pair<int, int> size{picture.width, picture.height};
  if (!values_ || valuesSize_ != size) {
    values_ = std::make_unique<KeyframedValues>(page_, settings_.layers, picture.width,
                                                picture.height, plan_.span);
    valuesSize_ = size;
  }
  return *values_;
}

quantel::cPtr<FrameImage> Loader::SpreadOf(FrameWork* work) {
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

std::shared_ptr<const Picture> Loader::MaskOf(FrameWork* work) {
  const fs::path& file = work->files.mask;
  if (file.empty()) {
    return nullptr;
  }
  if (!mask_ || file != maskFile_) {
    mask_ = nullptr;
    std::string warning;
    mask_ = std::make_shared<const Picture>(ReadPicture(file, &warning));
    maskFile_ = file;
    if (!warning.empty()) {
      work->report.remarks.push_back(warning);
    }
  }
  if (mask_->width != work->picture.width || mask_->height != work->picture.height) {
    throw Failure(file.string() + ": a mask must have the frame's size, " + SizeOf(work->picture) +
                  ", not " + SizeOf(*mask_));
  }
  return mask_;
}

}  // namespace glimmerhost
