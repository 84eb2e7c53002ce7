// SPDX-License-Identifier: BSD-3-Clause
#include "doors/library/defocus.h"

#include <algorithm>
#include <cmath>
#include <cstddef>
#include <limits>
#include <new>
#include <string>
#include <thread>

#include "baselib/utils/convert.h"
#include "doors/library/engines.h"
#include "doors/library/refusal.h"
#include "fftlib/core/run.h"
#include "fftlib/core/status.h"

namespace lx {
namespace {

constexpr double kLargestRadius = 8000.0;
constexpr double kLargestEmphasis = 500.0;
constexpr std::int32_t kLargestAperture = 16384;  // a picture's side

std::int32_t WaysOf(const glimmerblur_options& options) {
  if (options.threads > 0) {
    return options.threads;
  }
  constexpr unsigned kMost = 64;
  return static_cast<std::int32_t>(std::clamp(std::thread::hardware_concurrency(), 1U, kMost));
}

std::string Number(double value) {
  std::string text = std::to_string(value);
  // Without zeros that say nothing.
  text.erase(text.find_last_not_of('0') + 1);
  if (text.back() == '.') {
    text.pop_back();
  }
  return text;
}

[[noreturn]] void RefuseMember(const char* member, const std::string& value, const char* allowed) {
  throw Refusal(GLIMMERBLUR_INVALID_LOOK, "The look's " + std::string(member) + " is " + value +
                                              "; it must be " + allowed + '.');
}

void CheckRange(const char* member, double value, double least, double most) {
  if (!(value >= least && value <= most)) {
    RefuseMember(member, Number(value), (Number(least) + " to " + Number(most)).c_str());
  }
}

void CheckLook(const glimmerblur_look& look) {
  CheckRange("shape", look.shape, GLIMMERBLUR_CIRCLE, GLIMMERBLUR_PICTURE);
  CheckRange("sides", look.sides, 3, 50);
  CheckRange("radius_x", look.radius_x, 0.0, kLargestRadius);
  CheckRange("radius_y", look.radius_y, 0.0, kLargestRadius);
  CheckRange("rotation", look.rotation, -1e6, 1e6);
  CheckRange("pixel_aspect", look.pixel_aspect, 0.01, 100.0);
  CheckRange("emphasis", look.emphasis, 0.0, kLargestEmphasis);
  CheckRange("edge", look.edge, GLIMMERBLUR_REPEAT, GLIMMERBLUR_ZERO);
}

// A mask in the middle of one that is as large as a work picture.
std::unique_ptr<ImageRec, ImageDeleter> SpreadMask(const ApertureMask& mask,
                                                   const GridPlace& place) {
  const Size frame = place.frame;
  std::unique_ptr<ImageRec, ImageDeleter> spread(
      ImageCreate(frame.width, frame.height, 1, kSampleU8, 1));
  if (spread == nullptr) {
    throw std::bad_alloc();
  }
  auto* weights = static_cast<std::uint8_t*>(spread->data);
  std::fill_n(weights, std::ptrdiff_t{frame.width} * frame.height, std::uint8_t{0});
  const std::int32_t left = place.MiddleX() + mask.left;
  const std::int32_t bottom = place.MiddleY() + mask.bottom;
  for (std::int32_t y = 0; y < mask.height; ++y) {
    std::copy_n(mask.weights.begin() + static_cast<std::ptrdiff_t>(y) * mask.width, mask.width,
                weights + std::ptrdiff_t{bottom + y} * frame.width + left);
  }
  return spread;
}

// The work picture filled, or emptied into a frame, row by row.
struct ReadPass {
  const FrameView* frame;
  RowReading reading;
  Box box;
  const ImageRec* work;

  void operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
    for (std::int32_t y = first; y <= last; ++y) {
      ReadRow(*frame, reading, box.x, box.y + y, *work, y);
    }
  }
};

struct WritePass {
  const ImageRec* work;
  Tile tile;
  std::int32_t channel;
  const FrameView* frame;

  void operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
    for (std::int32_t y = first; y <= last; ++y) {
      WriteRow(*work, tile.wanted.x - tile.work.x, tile.wanted.y - tile.work.y + y,
               tile.wanted.width, tile.wanted.x, tile.wanted.y + y, channel, *frame);
    }
  }
};

// Samples of one frame into another of the same type.
struct CopyPass {
  const FrameView* from;
  const FrameView* to;

  void operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
    const std::size_t bytes = from->SampleBytes();
    for (std::int32_t y = to->box.y + first; y <= to->box.y + last; ++y) {
      const unsigned char* read = from->At(to->box.x, y);
      unsigned char* written = to->At(to->box.x, y);
      for (std::int32_t x = 0; x < to->box.width; ++x) {
        for (std::int32_t c = 0; c < to->channels; ++c) {
          std::copy_n(read + c * from->channelStride, bytes, written + c * to->channelStride);
        }
        read += from->pixelStride;
        written += to->pixelStride;
      }
    }
  }
};

// A frame of the same kind and place without gaps, in samples of its own.
FrameView Packed(const FrameView& like, unsigned char* samples) {
  FrameView packed = like;
  packed.data = samples;
  packed.channelStride = static_cast<std::ptrdiff_t>(like.SampleBytes());
  packed.pixelStride = packed.channelStride * like.channels;
  packed.rowStride = packed.pixelStride * like.box.width;
  return packed;
}

void CheckPair(const glimmerblur_frame& source, const glimmerblur_frame& destination) {
  const auto check = [](const char* what, std::int32_t one, std::int32_t other) {
    if (one != other) {
      throw Refusal(GLIMMERBLUR_INVALID_FRAME, "The source has " + std::string(what) + ' ' +
                                                   std::to_string(one) + " and the destination " +
                                                   std::to_string(other) +
                                                   "; they must be the same.");
    }
  };
  check("channels", source.channels, destination.channels);
  check("layout", source.layout, destination.layout);
  check("alpha", source.alpha, destination.alpha);
  check("first_row", source.first_row, destination.first_row);
}

std::string Words(const glimmerblur_rect& rect) {
  return std::to_string(rect.width) + " x " + std::to_string(rect.height) + " at (" +
         std::to_string(rect.x) + ", " + std::to_string(rect.y) + ')';
}

}  // namespace

// What one render has throughout.
struct Defocus::Job {
  FrameView source;
  RowReading reading;
  std::uint32_t channelMask;
  Look look;
};

Defocus::Defocus(const glimmerblur_options& options)
    : options_(options),
      runner_(WaysOf(options), options.parallel_for, options.parallel_user),
      backend_(MakeEngine(options.engine)),
      footprint_(FootprintOf(*backend_)) {}

void Defocus::SetLook(const glimmerblur_look* look) {
  if (look == nullptr) {
    throw Refusal(GLIMMERBLUR_INVALID_ARGUMENT, "The look is null.");
  }
  if (look->size != sizeof *look || look->version != GLIMMERBLUR_ABI) {
    throw Refusal(GLIMMERBLUR_INVALID_ARGUMENT,
                  "The look is a record of size " + std::to_string(look->size) + " and version " +
                      std::to_string(look->version) + "; glimmerblur_look_init makes " +
                      std::to_string(sizeof *look) + " and " + std::to_string(GLIMMERBLUR_ABI) +
                      '.');
  }
  CheckLook(*look);
  const bool isSameAperture =
      look_.has_value() && look_->shape == look->shape && look_->sides == look->sides &&
      look_->radius_x == look->radius_x && look_->radius_y == look->radius_y &&
      look_->rotation == look->rotation && look_->pixel_aspect == look->pixel_aspect &&
      (look_->centred != 0) == (look->centred != 0);
  look_ = *look;
  if (!isSameAperture) {
    Forget();
  }
}

void Defocus::SetAperture(const glimmerblur_frame* picture, double centreX, double centreY,
                          double inner, double outer) {
  if (picture == nullptr) {
    picture_.reset();
    Forget();
    return;
  }
  CheckFrame(picture, "aperture");
  if (picture->rect.width > kLargestAperture || picture->rect.height > kLargestAperture) {
    throw Refusal(GLIMMERBLUR_INVALID_FRAME, "The aperture is " + Words(picture->rect) +
                                                 "; sides must be up to " +
                                                 std::to_string(kLargestAperture) + '.');
  }
  const bool isDisc = inner >= 0.0 && outer >= 0.0;
  if (!(isDisc || (inner < 0.0 && outer < 0.0)) || !std::isfinite(inner) || !std::isfinite(outer) ||
      !std::isfinite(centreX) || !std::isfinite(centreY)) {
    throw Refusal(GLIMMERBLUR_INVALID_ARGUMENT,
                  "The aperture's disc has its centre at (" + Number(centreX) + ", " +
                      Number(centreY) + ") and radii of " + Number(inner) + " and " +
                      Number(outer) +
                      "; all must be finite, and both radii 0 or more, or both "
                      "below 0.");
  }
  picture_ = TakePicture(ViewOf(*picture, picture->rect), centreX, centreY, inner, outer);
  Forget();
}

void Defocus::Forget() {
  mask_.reset();
  loaded_.reset();
}

const ApertureMask& Defocus::MaskFor(std::int32_t width, std::int32_t height) {
  if (!look_.has_value()) {
    throw Refusal(GLIMMERBLUR_NO_LOOK, "No look has been set.");
  }
  const bool isOfSize = look_->centred != 0 || (maskWidth_ == width && maskHeight_ == height);
  if (!mask_.has_value() || !isOfSize) {
    Forget();
    mask_ = DrawAperture(*look_, picture_.has_value() ? &*picture_ : nullptr, width, height);
    maskWidth_ = width;
    maskHeight_ = height;
  }
  return *mask_;
}

glimmerblur_rect Defocus::RegionNeeded(const glimmerblur_rect& whole, std::int32_t firstRow,
                                       const glimmerblur_rect& wanted) {
  CheckRect(whole, "whole picture");
  CheckRect(wanted, "wanted region");
  if (firstRow != GLIMMERBLUR_TOP && firstRow != GLIMMERBLUR_BOTTOM) {
    throw Refusal(GLIMMERBLUR_INVALID_ARGUMENT,
                  "first_row is " + std::to_string(firstRow) + "; it must be 0 or 1.");
  }
  const bool topFirst = firstRow == GLIMMERBLUR_TOP;
  const Box all{0, 0, whole.width, whole.height};
  const Box box = ToBox(wanted, whole, topFirst);
  if (!all.Contains(box)) {
    throw Refusal(GLIMMERBLUR_INVALID_FRAME, "The wanted region is " + Words(wanted) +
                                                 ", which is not all inside the whole picture's " +
                                                 Words(whole) + '.');
  }
  const Reach4 reach = MaskFor(whole.width, whole.height).Reach();
  return ToRect(Intersect(Grow(box, reach), all), whole, topFirst);
}

void Defocus::Load(const ApertureMask& mask, const GridPlace& place) {
  if (loaded_.has_value() && loaded_->frame == place.frame && loaded_->grid == place.grid) {
    return;
  }
  loaded_.reset();
  // Nothing of an earlier aperture stays in the grids, whatever the engine.
  backend_->FreeGrids();
  const auto spread = SpreadMask(mask, place);
  if (backend_->Load(*spread, place, runner_.GetRows()) != kStatusOk) {
    throw std::bad_alloc();
  }
  CheckCancel();
  loaded_ = place;
}

void Defocus::CheckCancel() {
  if (runner_.IsCancelled()) {
    // A load may have ended half-way.
    loaded_.reset();
    throw Refusal(GLIMMERBLUR_CANCELLED, "The progress function cancelled the render.");
  }
}

void Defocus::RunTile(const Job& job, const Tile& tile, std::int32_t channel, const FrameView& to,
                      bool isLast) {
  RowReading reading = job.reading;
  reading.channel = channel;
  Rows* rows = runner_.GetRows();
  rows->Run(ReadPass{&job.source, reading, tile.work, work_.get()}, tile.work.height);
  CheckCancel();
  if (backend_->Convolve({work_.get(), work_.get(), *loaded_, job.channelMask}, job.look, rows) !=
      kStatusOk) {
    throw std::bad_alloc();
  }
  if (isLast) {
    runner_.Finish();
  }
  CheckCancel();
  rows->Run(WritePass{work_.get(), tile, channel, &to}, tile.wanted.height);
  CheckCancel();
  runner_.NextJob();
}

void Defocus::Render(const glimmerblur_frame* source, const glimmerblur_frame* destination,
                     const glimmerblur_rect* whole) {
  replaced_ = 0;
  bytes_ = 0;
  tiles_ = 0;
  CheckFrame(source, "source");
  CheckFrame(destination, "destination");
  CheckPair(*source, *destination);
  const glimmerblur_rect all = whole != nullptr ? *whole : source->rect;
  CheckRect(all, "whole picture");
  const Box box{0, 0, all.width, all.height};
  Job job{ViewOf(*source, all), {}, 0, {}};
  const FrameView to = ViewOf(*destination, all);
  if (!box.Contains(to.box)) {
    throw Refusal(GLIMMERBLUR_INVALID_FRAME, "The destination is " + Words(destination->rect) +
                                                 ", which is not all inside the whole picture's " +
                                                 Words(all) + '.');
  }
  const ApertureMask& mask = MaskFor(all.width, all.height);
  const Reach4 reach = mask.Reach();
  const Box needed = Intersect(Grow(to.box, reach), box);
  if (!job.source.box.Contains(needed)) {
    throw Refusal(GLIMMERBLUR_INVALID_FRAME,
                  "The source is " + Words(source->rect) + "; the destination needs " +
                      Words(ToRect(needed, all, source->first_row == GLIMMERBLUR_TOP)) + '.');
  }
  // The other one takes floats as well, and leaves them as they are.
  const bool isFloat = options_.engine == GLIMMERBLUR_FAST;
  if (!isFloat && !job.source.isRgba) {
    throw Refusal(GLIMMERBLUR_INVALID_FRAME,
                  "The engine exact takes RGBA alone, and the frames are planes.");
  }
  job.reading.held = needed;
  job.reading.repeats = look_->edge == GLIMMERBLUR_REPEAT;
  job.look.emphasis = NarrowToFloat(look_->emphasis);
  job.look.emphasisAlpha = look_->emphasis_alpha != 0;
  job.look.edgeMode = job.reading.repeats ? kEdgeReplicate : kEdgeZero;
  job.channelMask = kColourBits | (look_->blur_alpha != 0 ? kBitAlpha : 0);
  replaced_ = CountNotFinite(job.source, needed);

  const std::int32_t jobs = to.isRgba ? 1 : to.channels;
  const std::uint64_t samples = static_cast<std::uint64_t>(to.box.Pixels()) *
                                static_cast<std::uint64_t>(to.channels) * to.SampleBytes();
  const std::int32_t channels = to.isRgba ? to.channels : 1;
  // Planes that are done wait for the others, whether there are tiles or not.
  const std::uint64_t ofAperture =
      mask.weights.size() +
      (picture_.has_value() ? picture_->samples.size() * sizeof(std::uint16_t) : 0);
  const std::uint64_t beside = ofAperture + (jobs > 1 ? samples : 0);
  const TilePlan plan =
      PlanTiles(box, to.box, reach, *footprint_,
                {channels, isFloat ? 4 : 2, options_.memory_limit, beside, jobs > 1 ? 0 : samples});
  const bool isKept = plan.tiles.size() > 1 || jobs > 1;
  std::vector<unsigned char> kept(isKept ? samples : 0);
  const FrameView target = isKept ? Packed(to, kept.data()) : to;

  const Size frame = plan.place.frame;
  work_.reset(ImageCreate(frame.width, frame.height, static_cast<std::uint32_t>(channels),
                          isFloat ? kSampleFloat : kSampleU16, 1));
  if (work_ == nullptr) {
    throw std::bad_alloc();
  }
  bytes_ = plan.bytes;
  tiles_ = static_cast<std::int32_t>(plan.tiles.size());
  constexpr std::int32_t kPasses = 6;  // read, load twice, forward, columns, back
  runner_.Begin(jobs * tiles_, kPasses);
  Load(mask, plan.place);
  for (std::int32_t channel = 0; channel < jobs; ++channel) {
    for (std::size_t i = 0; i < plan.tiles.size(); ++i) {
      const bool isLast = channel + 1 == jobs && i + 1 == plan.tiles.size();
      RunTile(job, plan.tiles[i], channel, target, isLast);
    }
  }
  if (isKept) {
    runner_.GetRows()->Run(CopyPass{&target, &to}, to.box.height);
  }
  work_.reset();
}

void Defocus::Report(glimmerblur_report* report) const {
  report->replaced = replaced_;
  report->bytes = bytes_;
  report->tiles = tiles_;
  report->reserved = 0;
}

}  // namespace lx
