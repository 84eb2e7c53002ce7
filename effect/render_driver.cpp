// RenderFrame: one frame from the ports' images and the controls' values to the result.
#include <cmath>
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
constexpr double kTolerance = 0.01;
constexpr std::uint32_t kColourMask = kBitLuma | kBitCr | kBitCb;

// Strict, and not a number is never near anything.
bool IsNear(double value, double previous) { return std::fabs(value - previous) < kTolerance; }

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
  const std::int32_t width = input->width;
  const std::int32_t height = input->height;
  aspectX = NarrowToFloat(output->aspectX);
  aspectY = NarrowToFloat(output->aspectY);
  Radii radii{};
  {
    FrameImages images;
    images.source = ImageFromLX(input);
    images.destination = ImageClone(images.source);
    if (images.destination == nullptr) {
      return;
    }
    engine->SetParallelFor(this, ParallelFor);
    engine->SetCancelQuery(this, NeverCancel);
    radii = RadiiInPixels(width);
    engine->SetPixelAspect(aspectX, aspectY);
    if (!KeepsPsf(width, height, radii)) {
      images.psf = BuildPsf(width, height, radii);
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
  StorePsfKey(width, height, radii);
}

// Radii in pixels follow from the width alone, for X and for Y.
GlimmerBlur::Radii GlimmerBlur::RadiiInPixels(std::int32_t width) const {
  bool matched = false;
  GetCheckboxValue(match, kNoTime, &matched);
  const bool ownY = shape.value == kEllipse || (shape.value == kPolygon && !matched);
  const double x = ToPixels(radiusX.value, width);
  const double y = ownY ? ToPixels(radiusY.value, width) : x;
  Radii radii{NarrowToFloat(x), NarrowToFloat(y)};
  // Written so that a radius that is not a number stays what it is.
  if (radii.x < kSmallestRadius) {
    radii.x = kSmallestRadius;
  }
  if (y < kSmallestRadius) {
    radii.y = kSmallestRadius;
  }
  return radii;
}

// Intended: the comparison is with the previous frame and not with the frame that the PSF
// was built for, so a slow drift never rebuilds; and every value counts in every shape.
bool GlimmerBlur::KeepsPsf(std::int32_t width, std::int32_t height, const Radii& radii) const {
  std::int32_t sideCount = 0;
  GetIntegerValue(sides, kNoTime, &sideCount);
  return psfValid && shape.value == prevShape && shape.value != kImage && width == prevWidth &&
         height == prevHeight && IsNear(rotation.value, prevRotation) &&
         IsNear(radii.x, prevRadiusX) && IsNear(radii.y, prevRadiusY) && sideCount == prevSides &&
         IsNear(aspectX, prevAspectX) && IsNear(aspectY, prevAspectY);
}

// The picture that the PSF was cut from, if any; it lives until the frame is done.
ImageRec* GlimmerBlur::BuildPsf(std::int32_t width, std::int32_t height, const Radii& radii) {
  const float degrees = NarrowToFloat(rotation.value);
  switch (shape.value) {
    case kCircle:
    case kEllipse:
      engine->BuildShapePsf(width, height, kEllipticOutline, radii.x, radii.y, degrees,
                            kSidesOfEllipse);
      return nullptr;
    case kPolygon: {
      std::int32_t sideCount = 0;
      GetIntegerValue(sides, kNoTime, &sideCount);
      engine->BuildShapePsf(width, height, kPolygonOutline, radii.x, radii.y, degrees, sideCount);
      return nullptr;
    }
    case kImage:
      return BuildPsfFromImage(width, height);
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

void GlimmerBlur::StorePsfKey(std::int32_t width, std::int32_t height, const Radii& radii) {
  prevRotation = NarrowToFloat(rotation.value);
  prevRadiusX = radii.x;
  prevRadiusY = radii.y;
  prevShape = shape.value;
  GetIntegerValue(sides, kNoTime, &prevSides);
  prevAspectX = aspectX;
  prevAspectY = aspectY;
  prevWidth = width;
  prevHeight = height;
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
