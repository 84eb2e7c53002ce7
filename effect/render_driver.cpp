// SPDX-License-Identifier: BSD-3-Clause
// RenderFrame: one frame from the ports' images and the controls' values to the result.
#include <cstdint>
#include <utility>

#include "baselib/threads/parallel_rows.h"
#include "baselib/utils/convert.h"
#include "effect/glimmer_blur.h"
#include "library/image_conversion.h"

namespace lx {
namespace {

// The engine's outlines.
constexpr std::int32_t kEllipticOutline = 1;
constexpr std::int32_t kPolygonOutline = 2;
constexpr std::int32_t kSidesOfEllipse = 6;  // not looked at

constexpr float kSmallestRadius = 0.5F;
constexpr std::uint32_t kColourMask = kBitLuma | kBitCr | kBitCb;

std::int32_t NeverCancel(void* /*context*/) { return 0; }

// A radius of the store, a diameter as a fraction of the frame's width, in pixels.
double ToPixels(double fraction, std::int32_t width) { return fraction * width * 0.5; }

// Frees what a frame made, in the order of making.
class FrameImages {
 public:
  FrameImages() = default;
  FrameImages(const FrameImages&) = delete;
  FrameImages& operator=(const FrameImages&) = delete;
  ~FrameImages() {
    ImageFree(source);
    ImageFree(destination);
    ImageFree(psf);
  }

  ImageRec* source = nullptr;
  ImageRec* destination = nullptr;
  ImageRec* psf = nullptr;
};

}  // namespace

void GlimmerBlur::RenderFrame() {
  if (engine == nullptr) {
    return;
  }
  LXImage* input = sourcePort.image;
  LXImage* output = outputPort.image;
  const PsfKey key = KeyOfFrame();
  {
    FrameImages images;
    images.source = ImageFromLX(input);
    images.destination = ImageClone(images.source);
    if (images.destination == nullptr) {
      return;
    }
    engine->SetParallelFor(this, ParallelFor);
    engine->SetCancelQuery(this, NeverCancel);
    engine->SetPixelAspect(key.aspectX, key.aspectY);
    if (!psfValid || !SharesPsf(key, psfKey)) {
      images.psf = BuildPsf(key);
      // Intended: also after a build that failed or that no shape asked for. It is tried
      // again when a value of the key changes.
      psfValid = true;
    }
    engine->SetSourceImage(images.source);
    engine->SetEmphasis(NarrowToFloat(emphasis.value));
    std::uint32_t channelMask = kColourMask;
    if (alphaEnabled) {
      bool emphasiseAlpha = false;
      GetCheckboxValue(emphAlpha, kNoTime, &emphasiseAlpha);
      engine->SetEmphasisAlpha(emphasiseAlpha);
      channelMask |= kBitAlpha;
    }
    engine->Convolve(images.destination, channelMask);
    ImageToLX(images.destination, output);
  }
  if (!alphaEnabled) {
    output->CopyAlphaFrom(input);
  }
  // Intended: the key of this frame, also where the PSF is of an earlier one, so a slow drift never
  // rebuilds.
  psfKey = key;
}

// Radii in pixels follow from the width alone, for X and for Y.
PsfKey GlimmerBlur::KeyOfFrame() const {
  PsfKey key;
  key.shape = shape.value;
  key.width = sourcePort.image->width;
  key.height = sourcePort.image->height;
  key.rotation = rotation.value;
  key.psfRotation = NarrowToFloat(rotation.value);
  bool matched = false;
  GetCheckboxValue(match, kNoTime, &matched);
  const bool ownY = key.shape == kEllipse || (key.shape == kPolygon && !matched);
  const double x = ToPixels(radiusX.value, key.width);
  const double y = ownY ? ToPixels(radiusY.value, key.width) : x;
  key.radiusX = NarrowToFloat(x);
  key.radiusY = NarrowToFloat(y);
  // Written so that not-a-number stays what it is. Intended: Y is compared before it is narrowed, X
  // after.
  if (key.radiusX < kSmallestRadius) {
    key.radiusX = kSmallestRadius;
  }
  if (y < kSmallestRadius) {
    key.radiusY = kSmallestRadius;
  }
  GetIntegerValue(sides, kNoTime, &key.sides);
  key.aspectX = NarrowToFloat(outputPort.image->aspectX);
  key.aspectY = NarrowToFloat(outputPort.image->aspectY);
  return key;
}

// The picture that the PSF was cut from, if any; it lives until the frame is done.
ImageRec* GlimmerBlur::BuildPsf(const PsfKey& key) {
  switch (key.shape) {
    case kCircle:
    case kEllipse:
      engine->BuildShapePsf(key.width, key.height, kEllipticOutline, key.radiusX, key.radiusY,
                            key.psfRotation, kSidesOfEllipse);
      return nullptr;
    case kPolygon:
      engine->BuildShapePsf(key.width, key.height, kPolygonOutline, key.radiusX, key.radiusY,
                            key.psfRotation, key.sides);
      return nullptr;
    case kImage:
      return BuildPsfFromImage(key.width, key.height);
    default:
      return nullptr;
  }
}

ImageRec* GlimmerBlur::BuildPsfFromImage(std::int32_t width, std::int32_t height) {
  float inner = NarrowToFloat(ToPixels(radiusPSF1.value, width));
  float outer = NarrowToFloat(ToPixels(radiusPSF2.value, width));
  if (inner > outer) {
    std::swap(inner, outer);
  }
  const std::int32_t centreX = TruncateToInt32(center.x * width + 0.5);
  const std::int32_t centreY = TruncateToInt32(center.y * height + 0.5);
  ImageRec* picture = ImageFromLX(spreadPort.image);
  if (picture != nullptr) {
    engine->BuildImagePsf(picture, centreX, centreY, inner,
                          NarrowToFloat(static_cast<double>(outer) - inner));
  }
  return picture;
}

// The engine's passes on the pool. The pass in flight stands in two members, so one object
// runs one at a time.
void GlimmerBlur::ParallelFor(void* context, PassFunction pass, std::int32_t count,
                              DefocusEngine* engine) {
  auto* self = static_cast<GlimmerBlur*>(context);
  self->parallelFn = pass;
  self->parallelUser = engine;
  mp_parallel_rows(*self, &GlimmerBlur::RunPassRows, count);
}

void GlimmerBlur::RunPassRows(std::int32_t first, std::int32_t last) {
  parallelFn(parallelUser, first, last);
}

}  // namespace lx
