// SPDX-License-Identifier: BSD-3-Clause
// Limits, the order of calls, statuses, and whose mask it is. The work is the back-end's.
#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <utility>

#include "baselib/utils/convert.h"
#include "fftlib/fftlib.h"
#include "fftlib/psf/image_mask.h"
#include "fftlib/psf/polygon_fill.h"
#include "fftlib/psf/psf_outlines.h"

namespace lx {
namespace {

// A softer mask than this is worth a blur.
constexpr float kLeastSoftness = 0.1F;

// Written so that a value that is not a number stays what it is; it ends as sample 0.
float Limit(float value, float lowest, float highest) {
  if (value < lowest) {
    return lowest;
  }
  if (value > highest) {
    return highest;
  }
  return value;
}

std::int32_t NarrowMargin(std::int64_t margin) {
  return static_cast<std::int32_t>(std::clamp<std::int64_t>(margin, INT32_MIN, INT32_MAX));
}

Size SizeOf(const ImageRec& image) { return {image.width, image.height}; }

}  // namespace

DefocusEngine::DefocusEngine(std::unique_ptr<Backend> backend)
    : backend_(std::move(backend)), rows_(this, DivideRows) {
  if (Library() != nullptr && !Library()->HasThreads()) {
    Fail(kStatusNoThreads);
  }
}

DefocusEngine::~DefocusEngine() = default;

bool DefocusEngine::SetParallelFor(void* context, ParallelForFunction function) {
  rows_.SetContext(context);
  parallelFor_ = function;
  return true;
}

bool DefocusEngine::SetCancelQuery(void* /*context*/, CancelQueryFunction function) {
  rows_.SetCancelQuery(function);
  return true;
}

bool DefocusEngine::SetPixelAspect(float x, float y) {
  aspectX_ = x;
  aspectY_ = y;
  return true;
}

void DefocusEngine::SetEmphasis(float value) { look_.emphasis = Limit(value, 0.0F, 500.0F); }

bool DefocusEngine::SetEmphasisAlpha(bool enabled) {
  look_.emphasisAlpha = enabled;
  return enabled;
}

bool DefocusEngine::SetEdgeMode(std::int32_t mode) {
  if (mode != kEdgeZero && mode != kEdgeReplicate) {
    return Fail(kStatusEdgeMode);
  }
  look_.edgeMode = mode;
  return true;
}

void DefocusEngine::SetPsfSoftness(float radius) { psfSoftness_ = radius < 0.0F ? 0.0F : radius; }

bool DefocusEngine::SetGamma(float value) {
  gamma_.gamma = Limit(value, 0.2F, 5.0F);
  gamma_.active = gamma_.gamma != 1.0F;
  return true;
}

void DefocusEngine::SetOutputGain(float value) { gamma_.gain = Limit(value, 0.2F, 5.0F); }

void DefocusEngine::SetOutputOffset(float value) { gamma_.offset = Limit(value, -5.0F, 5.0F); }

ImageRec* DefocusEngine::PrepareMask(Size frame) {
  if (psfMask_ != nullptr && SizeOf(*psfMask_) != frame) {
    psfMask_.reset();
  }
  if (psfMask_ == nullptr) {
    psfMask_.reset(ImageCreate(frame.width, frame.height, 1, kSampleU8, 1));
  }
  if (psfMask_ == nullptr) {
    Fail(kStatusNoMemory);
    return nullptr;
  }
  std::memset(psfMask_->data, 0,
              static_cast<std::size_t>(frame.width) * static_cast<std::size_t>(frame.height));
  return psfMask_.get();
}

void DefocusEngine::BuildShapePsf(std::int32_t width, std::int32_t height, std::int32_t shape,
                                  float radiusX, float radiusY, float rotation,
                                  std::int32_t sides) {
  // Intended: from the radii as they arrive. Neither their raise to 1 nor the pixel aspect, which
  // may widen the outline, changes the margin.
  const std::int32_t margin = OutlineMargin(radiusX > radiusY ? radiusX : radiusY);
  ImageRec* mask = PrepareMask({width, height});
  if (mask == nullptr) {
    return;
  }
  const OutlineFrame frame{static_cast<float>(width * 0.5),
                           static_cast<float>(height * 0.5),
                           radiusX,
                           radiusY,
                           rotation,
                           aspectX_,
                           aspectY_};
  switch (shape) {
    case 1:
      FillConvexPolygon(mask, MakeEllipse(frame));
      break;
    case 2:
      FillConvexPolygon(mask, MakeRegularPolygon(frame, sides));
      break;
    case 3:
      FillConvexPolygon(mask, MakeRectangle(frame));
      break;
    case 4:
      FillConvexPolygon(mask, MakeCentredRectangle(frame));
      break;
    default:
      break;  // an empty mask, which is loaded like any other
  }
  LoadPsf(mask, margin);
}

void DefocusEngine::BuildImagePsf(const ImageRec* image, std::int32_t centreX, std::int32_t centreY,
                                  float innerRadius, float falloff) {
  if (image == nullptr) {
    return;
  }
  // Raised before it divides, and before the margin is made of it.
  if (falloff < 1.0F) {
    falloff = 1.0F;
  }
  const std::int32_t margin = OutlineMargin(static_cast<double>(innerRadius) + falloff);
  // The mask takes the top byte of a sample, and a float has none that means anything.
  if (image->sampleType == kSampleFloat) {
    Fail(kStatusFloatImage);
    return;
  }
  if (!ImageHasSamples(image)) {
    Fail(kStatusSizeRange);
    return;
  }
  ImageRec* mask = PrepareMask(SizeOf(*image));
  if (mask == nullptr) {
    return;
  }
  CutImageMask(*image, {centreX, centreY, innerRadius, falloff}, mask);
  LoadPsf(mask, margin);
}

bool DefocusEngine::LoadPsf(ImageRec* mask, std::int32_t margin) {
  if (mask == nullptr) {
    return Fail(kStatusNotLoaded);
  }
  std::int64_t wholeMargin = margin;
  if (psfSoftness_ > kLeastSoftness) {
    constexpr std::int32_t kAllChannels = -1;
    ImageBlur(mask, psfSoftness_, psfSoftness_, kAllChannels);
    // A soft mask reaches further.
    wholeMargin += std::int64_t{TruncateToInt32(std::ceil(psfSoftness_))} + 1;
  }
  // After the blur: the mask is softened even where nothing will load it.
  if (backend_ == nullptr) {
    return false;
  }
  if (!ImageHasSamples(mask)) {
    return Fail(kStatusSizeRange);
  }
  psfImage_ = mask;
  margin_ = NarrowMargin(wholeMargin);
  place_.frame = SizeOf(*mask);
  const GridSides sides = backend_->GridOf(*mask, margin_);
  if (!IsAllowedGrid(sides, backend_->GetRules().largestSide)) {
    psfImage_ = nullptr;
    return Fail(kStatusSizeRange);
  }
  const Size grid{static_cast<std::int32_t>(sides.width), static_cast<std::int32_t>(sides.height)};
  // Blocks may have moved place_.grid on without the buffers, so both are compared.
  if (grid != place_.grid || grid != loadedGrid_) {
    backend_->FreeGrids();
    loadedGrid_ = grid;
  }
  place_ = PlaceFrame(place_.frame, grid);
  const std::int32_t loaded = backend_->Load(*mask, place_, &rows_);
  if (loaded != kStatusOk && !backend_->GetRules().keepsMask) {
    psfImage_ = nullptr;
  }
  return Finish(loaded);
}

bool DefocusEngine::SetSourceImage(const ImageRec* image) {
  sourceImage_ = nullptr;
  if (image == nullptr || SizeOf(*image) != place_.frame) {
    return Fail(kStatusSourceSize);
  }
  if (!ImageHasSamples(image)) {
    return Fail(kStatusSizeRange);
  }
  sourceImage_ = image;
  return true;
}

// A load that failed may have moved the frame's size on, away from the grids: a frame
// that no longer fits into them has no PSF.
bool DefocusEngine::HasPsf() const {
  return backend_->IsLoaded() && (psfImage_ != nullptr || backend_->GetRules().keepsMask) &&
         loadedGrid_ == place_.grid && place_.Fits();
}

bool DefocusEngine::CheckRun(const ImageRec* dest) {
  if (sourceImage_ == nullptr || !HasPsf()) {
    return Fail(kStatusNotLoaded);
  }
  if (dest == nullptr || SizeOf(*dest) != SizeOf(*sourceImage_) ||
      dest->sampleType != sourceImage_->sampleType) {
    return Fail(kStatusDestination);
  }
  return ImageHasSamples(dest) || Fail(kStatusSizeRange);
}

bool DefocusEngine::Convolve(ImageRec* dest, std::uint32_t channelMask) {
  if (backend_ == nullptr || !CheckRun(dest)) {
    return false;
  }
  if (sourceImage_->sampleType == kSampleFloat && !backend_->GetRules().takesFloat) {
    return Fail(kStatusFloatImage);
  }
  if (std::min(sourceImage_->channels, dest->channels) < 3 ||
      (channelMask & kColourBits) != kColourBits) {
    return Fail(kStatusChannels);
  }
  return Finish(backend_->Convolve({sourceImage_, dest, place_, channelMask}, look_, &rows_));
}

bool DefocusEngine::ConvolveChannels(ImageRec* dest, std::uint32_t channelMask) {
  if (backend_ == nullptr || !CheckRun(dest)) {
    return false;
  }
  return Finish(
      backend_->ConvolveChannels({sourceImage_, dest, place_, channelMask}, look_, gamma_, &rows_));
}

TransformLibrary* DefocusEngine::Library() const {
  TransformLibrary* own = backend_ != nullptr ? backend_->Library() : nullptr;
  return own != nullptr ? own : library_.get();
}

bool DefocusEngine::ImportWisdom() { return Library() != nullptr && Library()->ImportWisdom(); }

bool DefocusEngine::ExportWisdom() { return Library() != nullptr && Library()->ExportWisdom(); }

bool DefocusEngine::Fail(std::int32_t code) {
  rows_.SetStatus(code);
  return false;
}

bool DefocusEngine::Finish(std::int32_t code) {
  if (code != kStatusOk && code != kRefused) {
    Fail(code);
  }
  return code == kStatusOk;
}

void DefocusEngine::DivideRows(void* owner, std::int32_t count) {
  auto* engine = static_cast<DefocusEngine*>(owner);
  // Intended: a function without a context is not called, and the caller does all rows.
  if (engine->parallelFor_ != nullptr && engine->rows_.Context() != nullptr) {
    engine->parallelFor_(engine->rows_.Context(), RunRange, count, engine);
  } else {
    RunRange(engine, 0, count - 1);
  }
}

void DefocusEngine::RunRange(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->rows_.RunRange(first, last);
}

}  // namespace lx
