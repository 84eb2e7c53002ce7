// SPDX-License-Identifier: BSD-3-Clause
#include "host/render/loader.h"

#include <algorithm>
#include <chrono>
#include <cstdint>
#include <thread>
#include <utility>
#include <variant>

#include "host/looks/foresight.h"
#include "host/looks/keys.h"
#include "host/module/frame_checks.h"
#include "host/module/second_clip.h"
#include "host/pictures/alpha.h"
#include "host/pictures/floats/float_picture.h"
#include "host/render/frame_digest.h"
#include "host/render/grow.h"
#include "host/shots/file_hash.h"
#include "host/shots/steady_file.h"
#include "host/support/failure.h"
#include "host/support/text.h"

namespace glimmerhost {

namespace fs = std::filesystem;

namespace {

// What the module is given; floats go past it.
quantel::cPtr<FrameImage> SourceOf(const Picture& picture) {
  return quantel::cPtr<FrameImage>(picture.IsFloat() ? nullptr : new FrameImage(picture));
}

std::string SizeOf(const Picture& picture) {
  return std::to_string(picture.width) + " x " + std::to_string(picture.height);
}

}  // namespace

Loader::Loader(const Page& page, const ShotSettings& settings, const ShotPlan& plan,
               const lx::Footprint& engine, Manifest* manifest, PamReader* pipe)
    : page_(page),
      settings_(settings),
      plan_(plan),
      engine_(engine),
      manifest_(manifest),
      earlier_(settings, engine, manifest,
               [this](int frame, int width, int height) {
                 return DecidingValues(frame, width, height);
               }),
      pipe_(pipe) {}

void Loader::Run(FrameChannel* loaded) {
  const ClosedAtEnd end(nullptr, loaded);
  if (RunList(loaded)) {
    RunAside(loaded);
  }
}

// False if no frame is wanted any more.
bool Loader::RunList(FrameChannel* loaded) {
  for (std::size_t place = 0;; ++place) {
    const std::optional<FrameFiles> files = FilesAt(place);
    if (!files) {
      return true;
    }
    std::unique_ptr<FrameWork> work = WorkOf(*files);
    // A picture of the pipe cannot be put aside: those behind it could not be read.
    const Elsewhere elsewhere = files->input == kPipe ? Elsewhere::kWaitFor : Elsewhere::kPutAside;
    bool isFrame = true;
    DoPart(work.get(), [&] { isFrame = Load(work.get(), elsewhere, loaded); });
    if (!isFrame) {
      return true;
    }
    if (work->isElsewhere) {
      aside_.push_back(*files);
      continue;
    }
    const bool isLast = IsLastFrame(*work, settings_.keepGoing);
    if (!loaded->Put(std::move(work)) || isLast) {
      return false;
    }
  }
}

// The other program's own frames go on meanwhile, and so do those before these: neither program can
// wait for the other for ever.
void Loader::RunAside(FrameChannel* loaded) {
  for (const FrameFiles& files : aside_) {
    std::unique_ptr<FrameWork> work = WorkOf(files);
    DoPart(work.get(), [&] { Load(work.get(), Elsewhere::kWaitFor, loaded); });
    const bool isLast = IsLastFrame(*work, settings_.keepGoing);
    if (work->isElsewhere || !loaded->Put(std::move(work)) || isLast) {
      return;
    }
  }
}

std::unique_ptr<FrameWork> Loader::WorkOf(const FrameFiles& files) const {
  auto work = std::make_unique<FrameWork>();
  work->files = files;
  work->report.frame = files.frame;
  const bool toFilm = files.output == kPipe && !settings_.filmOutput.empty();
  work->report.output = toFilm ? settings_.filmOutput : files.output.string();
  return work;
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
bool Loader::Load(FrameWork* work, Elsewhere elsewhere, FrameChannel* loaded) {
  CheckInShot(plan_, work->files.frame);
  // Before anything is skipped: a picture of the pipe stands between this frame and the next.
  if (work->files.input == kPipe && !TakeFromPipe(work)) {
    return false;
  }
  if (work->files.output != kPipe && !IsToRender(work, elsewhere, loaded)) {
    return true;
  }
  TakePicture(work);
  SettleInput(work);
  return true;
}

// False for a frame that is skipped or elsewhere. The frame is looked at before it is claimed, so
// that a run that has nothing to do writes nothing; and after, as another program may have done it.
bool Loader::IsToRender(FrameWork* work, Elsewhere elsewhere, FrameChannel* loaded) {
  EarlierFrame found = EarlierFrame::kNone;
  if (settings_.skipExisting) {
    if (IsThere(*work, &found)) {
      work->report.state = FrameState::kSkipped;
      WarnOfArithmetic(work);
      FrameClaim::RemoveLeftover(work->files.output);
      return false;
    }
    // What makes every claim vain. A file that appears meanwhile may be another program's.
    const PictureOutput possible(work->files.output, true);
    while (!(work->claim = FrameClaim::Try(work->files.output))) {
      work->isElsewhere = elsewhere == Elsewhere::kPutAside || loaded->IsClosed();
      if (work->isElsewhere) {
        return false;
      }
      constexpr std::chrono::milliseconds kPause{50};
      std::this_thread::sleep_for(kPause);
    }
    if (IsThere(*work, &found)) {
      work->claim = nullptr;
      work->report.state = FrameState::kSkipped;
      WarnOfArithmetic(work);
      return false;
    }
  }
  work->output = std::make_unique<PictureOutput>(
      work->files.output, settings_.overwrite || found == EarlierFrame::kStale);
  return true;
}

// Frames of another arithmetic stay: they are what was asked for, and to render them anew where
// machines differ would begin again with every machine. Said once.
void Loader::WarnOfArithmetic(FrameWork* work) {
  if (warnedOfArithmetic_) {
    return;
  }
  if (const std::string other = earlier_.OtherArithmetic(work->files.frame); !other.empty()) {
    warnedOfArithmetic_ = true;
    work->report.remarks.push_back(
        "is left as another arithmetic has made it, whose samples may differ from those of this "
        "run "
        "in their last bits: " +
        other + "; check counts such frames");
  }
}

// Whether the frame needs no work. Throws Failure for an output that nobody knows and that may not
// be replaced.
bool Loader::IsThere(const FrameWork& work, EarlierFrame* found) const {
  const auto fromPipe = work.sources.find(kInputSource);
  *found =
      earlier_.Find(work.files, fromPipe == work.sources.end() ? FileState() : fromPipe->second);
  if (*found == EarlierFrame::kUnknown && !settings_.overwrite) {
    throw Failure(work.files.output.string() + ": exists already, and no line of " +
                  manifest_->File().string() + " tells of it; --overwrite replaces it");
  }
  return *found == EarlierFrame::kCurrent;
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
  if (manifest_ != nullptr) {
    const Picture& taken = work->picture;
    work->sources[kInputSource].hash =
        TextHash(SamplesHash(taken.samples) + " " + std::to_string(taken.width) + "x" +
                 std::to_string(taken.height));
  }
  if (settings_.reading.precision == Precision::kFloat) {
    MakeFloat(&work->picture);
  }
  return true;
}

void Loader::TakePicture(FrameWork* work) {
  const fs::path& file = work->files.input;
  if (file == kPipe) {
    return;
  }
  ReadOptions options = settings_.reading;
  options.keptFor = work->output ? KeptFor(work->output->Format()) : kNoFormat;
  ReadSteadily(file, [&] {
    CheckRoom(*work);
    work->picture = ReadPicture(file, options, &work->found);
    if (manifest_ != nullptr) {
      work->sources[kInputSource] = StateOfFile(file);
    }
  });
  if (!options.blurChannels.empty() && !work->picture.extras) {
    throw Failure(file.string() + ": --blur-channels " + options.blurChannels.front() +
                  " names none of its channels, as it has no further ones");
  }
  work->report.remarks = work->found.lines;
  work->report.notCarried = work->found.notCarried;
}

void Loader::SettleInput(FrameWork* work) {
  Picture& picture = work->picture;
  FrameInput& input = work->input;
  input.frame = work->files.frame;
  work->readSize = {picture.width, picture.height};
  const KeyframedValues& values = ValuesFor(picture.width, picture.height);
  work->alphaBefore = picture.alpha;
  if (settings_.premultiplied) {
    Premultiply(&picture);
  }
  work->mask = MaskOf(work);
  const int by = settings_.grow ? Grow(work) : 0;
  input.values = values.AtGrown(work->files.frame, by);
  work->mix = values.MixAt(work->files.frame);
  input.pixelAspect =
      settings_.pixelAspect.first == 0 ? picture.pixelAspect : settings_.pixelAspect;
  input.spread = SpreadOf(work);
  NoteSources(work);
  WarnOfNoise(work);
  WarnOfRange(work);
  input.source = SourceOf(picture);
  if (picture.IsFloat() && !input.spread && ShapeOf(input.values) == Shape::kImage) {
    input.spread = SpreadOfItself(picture);
  }
  SettleLayers(work, by);
}

// All layers get the picture's own aperture: where it is cut out of the picture, they are given
// that as the second clip.
void Loader::SettleLayers(FrameWork* work, int by) {
  for (PictureLayer& layer : work->picture.layers) {
    GrowPicture(by, &layer.picture);
    FrameInput input = work->input;
    if (!input.spread && ShapeOf(input.values) == Shape::kImage) {
      input.spread = input.source;
    }
    if (layer.isData) {
      input.values[kEmphasisKey] = 1.0;
      input.values[kEmphAlphaKey] = false;
    }
    input.source = SourceOf(layer.picture);
    work->layers.push_back({std::move(input), {}, {}});
  }
}

// How many pixels each side has got.
int Loader::Grow(FrameWork* work) {
  Picture& picture = work->picture;
  if (picture.alpha == Alpha::kNone) {
    throw Failure(work->files.input.string() +
                  ": --grow needs a picture with alpha, as nothing else tells it from the black "
                  "around it");
  }
  const int by = growth_;
  const std::int64_t width = picture.width + 2 * std::int64_t{by};
  const std::int64_t height = picture.height + 2 * std::int64_t{by};
  // Not left to the renderer, which looks again: such a canvas may have no room in memory either.
  if (std::max(width, height) > engine_.largestSide) {
    throw Failure("a picture of " + SizeOf(picture) + " grown by " + std::to_string(by) +
                  " pixels on each side is too large: sides may have " +
                  std::to_string(engine_.largestSide) + " pixels at most");
  }
  GrowPicture(by, &picture);
  if (work->mask) {
    auto mask = std::make_shared<Picture>(*work->mask);
    GrowPicture(by, mask.get());
    work->mask = std::move(mask);
  }
  return by;
}

// Once for the shot: a thousand frames would say the same.
void Loader::WarnOfNoise(FrameWork* work) {
  const double emphasis = std::get<double>(work->input.values.at(kEmphasisKey));
  const double quiet = QuietEmphasis(engine_);
  if (emphasis > quiet && !work->picture.IsFloat() && !warnedOfNoise_) {
    warnedOfNoise_ = true;
    work->report.remarks.push_back("an emphasis of " + Shortest(emphasis) +
                                   " shows rounding noise in dark areas; up to " + Shortest(quiet) +
                                   ", and with the engine fast at any, none can "
                                   "be seen");
  }
}

void Loader::WarnOfRange(FrameWork* work) {
  const bool isIdle = !settings_.reading.range.IsPlain() && work->picture.range.IsPlain();
  if (isIdle && !warnedOfRange_) {
    warnedOfRange_ = true;
    work->report.remarks.emplace_back("--range has no effect on a picture of whole numbers");
  }
}

// Before minutes and gigabytes go into samples of which nothing can be made. What the effect holds
// of the frame before, it gives back first; whether enough of it, is known when the frame's turn
// comes.
void Loader::CheckRoom(const FrameWork& work) {
  const PictureHead head = ReadPictureHead(work.files.input);
  // The picture, its copy for the effect and the result.
  const std::uint64_t pixel = settings_.reading.KeepsFloats(head.floats) ? 48 : 24;
  const KeyframedValues& looks = ValuesFor(head.width, head.height);
  const auto values = looks.AtGrown(work.files.frame, growth_);
  const int width = head.width + 2 * growth_;
  const int height = head.height + 2 * growth_;
  const std::uint64_t pixels =
      static_cast<std::uint64_t>(width) * static_cast<std::uint64_t>(height);
  CheckGrid(engine_, values, width, height, held_, pixel * pixels);
  held_ = std::max(held_, Foresee(engine_, values, width, height).effectBytes);
}

const KeyframedValues& Loader::ValuesFor(int width, int height) {
  const std::pair<int, int> size{width, height};
  if (!values_ || valuesSize_ != size) {
    values_ = std::make_unique<KeyframedValues>(page_, settings_.layers, width, height, plan_.span);
    valuesSize_ = size;
    growth_ = settings_.grow ? GrowthOf(*values_, plan_.span, width) : 0;
  }
  return *values_;
}

std::map<std::string, Value> Loader::DecidingValues(int frame, int width, int height) {
  const KeyframedValues& values = ValuesFor(width, height);
  std::map<std::string, Value> all = values.At(frame);
  all[kMix] = values.MixAt(frame);
  all["grow"] = growth_;
  return all;
}

// The states of spread and mask are those of when they were opened: a still is read once for all
// frames.
void Loader::NoteSources(FrameWork* work) {
  if (manifest_ == nullptr) {
    return;
  }
  const auto [width, height] = work->readSize;
  const auto values = DecidingValues(work->files.frame, width, height);
  for (const auto& [name, file] : SourceFiles(work->files, values)) {
    if (name != kInputSource) {
      work->sources[name] = name == kSpreadSource ? spreadState_ : maskState_;
    }
  }
  work->digest = FrameDigest(WhatDecides(settings_, engine_, work->files, values, work->sources));
}

quantel::cPtr<FrameImage> Loader::SpreadOf(FrameWork* work) {
  const fs::path& file = work->files.spread;
  const std::pair<int, int> size{work->picture.width, work->picture.height};
  if (!spread_ || file != spreadFile_ || size != spreadSize_) {
    const auto open = [&] {
      spread_ =
          OpenSpread(file, size.first, size.second, settings_.premultiplied, &work->report.remarks);
    };
    if (manifest_ != nullptr && !file.empty()) {
      ReadSteadily(file, [&] {
        open();
        spreadState_ = StateOfFile(file);
      });
    } else {
      open();
    }
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
    ReadSteadily(file, [&] {
      mask_ = std::make_shared<const Picture>(ReadPicture(file, &warning));
      if (manifest_ != nullptr) {
        maskState_ = StateOfFile(file);
      }
    });
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
