#include <algorithm>
#include <cmath>
#include <cstddef>
#include <cstdint>
#include <cstring>
#include <mutex>

#include "baselib/platform/platform.h"
#include "baselib/threads/system_info.h"
#include "baselib/utils/convert.h"
#include "baselib/utils/heap.h"
#include "fftlib/backends/fftw/fft_calls.h"
#include "fftlib/backends/fftw/wisdom.h"
#include "fftlib/fftlib.h"
#include "fftlib/psf/polygon_fill.h"
#include "fftlib/psf/psf_outlines.h"

namespace lx {
namespace {

// Any value asks for measured plans, an empty one included.
constexpr const char* kWisdomVariable = "LX_USE_FFTW_WISDOM";

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

}  // namespace

std::int64_t PaddedSide(std::int32_t side, std::int32_t margin) {
  return NextPowerOfTwo(side + 2 * std::int64_t{std::max(margin, 0)});
}

std::int64_t NextPowerOfTwo(std::int64_t n, std::int32_t* exponent) {
  std::int64_t power = 1;
  std::int32_t bits = 0;
  // The bound is far above every size in use; it keeps the shift defined for any n.
  while (power < n && bits < 62) {
    power *= 2;
    ++bits;
  }
  if (exponent != nullptr) {
    *exponent = bits;
  }
  return power;
}

DefocusEngine::DefocusEngine() : DefocusEngine(kModeFftw) {}

DefocusEngine::DefocusEngine(std::int32_t mode) : engineMode(mode == 5 ? kModeFftw : mode) {
  threadsReady = AcquireFftThreads();
  if (threadsReady == 0) {
    status = kStatusNoThreads;
  }
  threadCount = get_processor_count();
  useWisdom = GetPlatform().hasEnvironmentVariable(kWisdomVariable) ? 1 : 0;
  if (useWisdom != 0) {
    const std::scoped_lock hold(FftPlannerLock());
    MakeWisdomFolder();
  }
}

DefocusEngine::~DefocusEngine() {
  FreeKernelGrids();
  if (separableKernel != nullptr) {
    lx_free(separableKernel);
  }
  ImageFree(separableWork);
  ImageFree(psfMask);
  if (frequencyTable != nullptr) {
    lx_free(frequencyTable);
  }
  if (useWisdom != 0) {
    const std::scoped_lock hold(FftPlannerLock());
    // An engine that has planned nothing would write a file of nothing over a good one.
    if (wisdomLoaded == 0) {
      ImportWisdom();
    }
    ExportWisdom();
  }
  FreeGrids();
  ReleaseFftThreads();
}

bool DefocusEngine::SetParallelFor(void* context, ParallelForFunction function) {
  callbackContext = context;
  parallelFor = function;
  return true;
}

bool DefocusEngine::SetCancelQuery(void* /*context*/, CancelQueryFunction function) {
  cancelQuery = function;
  return true;
}

bool DefocusEngine::SetPixelAspect(float x, float y) {
  aspectX = x;
  aspectY = y;
  return true;
}

void DefocusEngine::SetEmphasis(float value) { emphasis = Limit(value, 0.0F, 500.0F); }

bool DefocusEngine::SetEmphasisAlpha(bool enabled) {
  emphasisAlpha = enabled;
  return enabled;
}

bool DefocusEngine::SetEdgeMode(std::int32_t mode) {
  if (mode != kEdgeZero && mode != kEdgeReplicate) {
    return Fail(kStatusEdgeMode);
  }
  edgeMode = mode;
  return true;
}

void DefocusEngine::SetPsfSoftness(float radius) { psfSoftness = radius < 0.0F ? 0.0F : radius; }

bool DefocusEngine::SetGamma(float value) {
  gamma = Limit(value, 0.2F, 5.0F);
  gammaActive = gamma != 1.0F;
  return true;
}

void DefocusEngine::SetOutputGain(float value) { outputGain = Limit(value, 0.2F, 5.0F); }

void DefocusEngine::SetOutputOffset(float value) { outputOffset = Limit(value, -5.0F, 5.0F); }

bool DefocusEngine::Fail(std::int32_t code) {
  status.store(code, std::memory_order_relaxed);
  return false;
}

ImageRec* DefocusEngine::PrepareMask(std::int32_t width, std::int32_t height) {
  if (psfMask != nullptr && (psfMask->width != width || psfMask->height != height)) {
    ImageFree(psfMask);
    psfMask = nullptr;
  }
  if (psfMask == nullptr) {
    psfMask = ImageCreate(width, height, 1, kSampleU8, 1);
  }
  if (psfMask == nullptr) {
    Fail(kStatusNoMemory);
    return nullptr;
  }
  std::memset(psfMask->data, 0, static_cast<std::size_t>(width) * static_cast<std::size_t>(height));
  return psfMask;
}

void DefocusEngine::BuildShapePsf(std::int32_t width, std::int32_t height, std::int32_t shape,
                                  float radiusX, float radiusY, float rotation,
                                  std::int32_t sides) {
  const std::int32_t newMargin = OutlineMargin(radiusX > radiusY ? radiusX : radiusY);
  ImageRec* mask = PrepareMask(width, height);
  if (mask == nullptr) {
    return;
  }
  const OutlineFrame frame{static_cast<float>(width * 0.5),
                           static_cast<float>(height * 0.5),
                           radiusX,
                           radiusY,
                           rotation,
                           aspectX,
                           aspectY};
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
  LoadPsf(mask, newMargin);
}

bool DefocusEngine::LoadPsf(ImageRec* mask, std::int32_t newMargin) {
  if (mask == nullptr) {
    return Fail(kStatusNotLoaded);
  }
  std::int64_t wholeMargin = newMargin;
  if (psfSoftness > kLeastSoftness) {
    constexpr std::int32_t kAllChannels = -1;
    ImageBlur(mask, psfSoftness, psfSoftness, kAllChannels);
    wholeMargin += std::int64_t{TruncateToInt32(std::ceil(psfSoftness))} + 1;
  }
  const auto rounded =
      static_cast<std::int32_t>(std::clamp<std::int64_t>(wholeMargin, INT32_MIN, INT32_MAX));
  switch (engineMode) {
    case kModeKernelF64:
      return LoadPsfKernel<double>(mask, rounded);
    case kModeNone:
      return false;
    case kModeFftw:
      return LoadPsfFftw(mask, rounded);
    default:
      return LoadPsfKernel<float>(mask, rounded);
  }
}

bool DefocusEngine::SetSourceImage(const ImageRec* image) {
  sourceImage = nullptr;
  if (image == nullptr || image->width != frameWidth || image->height != frameHeight) {
    return Fail(kStatusSourceSize);
  }
  if (!ImageHasSamples(image)) {
    return Fail(kStatusSizeRange);
  }
  sourceImage = image;
  return true;
}

bool DefocusEngine::Convolve(ImageRec* dest, std::uint32_t channelMask) {
  switch (engineMode) {
    case kModeKernelF64:
      return ConvolveKernel<double>(dest, channelMask);
    case kModeNone:
      return false;
    case kModeFftw:
      return ConvolveFftw(dest, channelMask);
    default:
      return ConvolveKernel<float>(dest, channelMask);
  }
}

bool DefocusEngine::ConvolveChannels(ImageRec* dest, std::uint32_t channelMask) {
  switch (engineMode) {
    case kModeKernelF64:
      return ConvolveChannelsKernel<double>(dest, channelMask);
    case kModeNone:
      return false;
    case kModeFftw:
      return ConvolveChannelsFftw(dest, channelMask);
    default:
      return ConvolveChannelsKernel<float>(dest, channelMask);
  }
}

bool DefocusEngine::TakeMask(const ImageRec* mask, std::int32_t newMargin) {
  if (!ImageHasSamples(mask)) {
    return Fail(kStatusSizeRange);
  }
  psfImage = mask;
  margin = newMargin;
  frameWidth = mask->width;
  frameHeight = mask->height;
  return true;
}

void DefocusEngine::SetGrid(std::int32_t width, std::int32_t height) {
  if (width != paddedWidth || height != paddedHeight || width != gridWidth_ ||
      height != gridHeight_) {
    FreeGrids();
    FreeKernelGrids();
    paddedWidth = width;
    paddedHeight = height;
    gridWidth_ = width;
    gridHeight_ = height;
  }
}

// A load that failed may have moved the frame's size on, away from the grids: a frame
// that no longer fits into them has no PSF.
bool DefocusEngine::FitsGrid() const {
  return gridWidth_ == paddedWidth && gridHeight_ == paddedHeight && offsetX >= 0 && offsetY >= 0 &&
         offsetX + frameWidth <= paddedWidth && offsetY + frameHeight <= paddedHeight;
}

bool DefocusEngine::CheckRun(const ImageRec* dest) {
  if (psfSpatial == nullptr || psfSpectrum == nullptr || psfPlan == nullptr ||
      sourceImage == nullptr || !FitsGrid()) {
    return Fail(kStatusNotLoaded);
  }
  return CheckDestination(dest);
}

bool DefocusEngine::CheckDestination(const ImageRec* dest) {
  if (dest == nullptr || dest->width != sourceImage->width || dest->height != sourceImage->height ||
      dest->sampleType != sourceImage->sampleType) {
    return Fail(kStatusDestination);
  }
  if (!ImageHasSamples(dest)) {
    return Fail(kStatusSizeRange);
  }
  return true;
}

void DefocusEngine::RunRows(PassFunction pass, std::int32_t count) {
  if (parallelFor != nullptr && callbackContext != nullptr) {
    parallelFor(callbackContext, pass, count, this);
  } else {
    pass(this, 0, count - 1);
  }
}

bool DefocusEngine::CancelRequested() const {
  return cancelQuery != nullptr && cancelQuery(callbackContext) != 0;
}

}  // namespace lx
