// Rows of pictures into complex grids, and back.
#include <algorithm>
#include <cstddef>
#include <cstdint>

#include "baselib/utils/convert.h"
#include "fftlib/backends/kernels/passes.h"
#include "fftlib/core/complex_sample.h"
#include "fftlib/fftlib.h"
#include "fftlib/planes/edge_rows.h"
#include "fftlib/planes/emphasis.h"
#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_kernels.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

// What 1 becomes in 32 bits.
// Intended: one more than they hold, so that a full white wraps around to 0.
constexpr double kFull32 = 4294967296.0;

// From a mask's samples to 0..1, by sample type.
constexpr float kMaskScales[] = {0.003921568859368563F, 1.5259021893146654e-05F,
                                 2.3283064365386963e-10F, 1.0F};

// A piece of a row at a time, so that what is made of it stays at hand.
constexpr std::int32_t kPiece = 256;

template <class T>
T Narrow(double value) {
  if constexpr (sizeof(T) == sizeof(float)) {
    return NarrowToFloat(value);
  } else {
    return value;
  }
}

// The grid's row for row y of the frame, at its first pixel.
template <class T>
ComplexSample<T>* FrameRow(const DefocusEngine& engine, void* grid, std::int32_t y) {
  return static_cast<ComplexSample<T>*>(grid) +
         std::ptrdiff_t{engine.offsetY + y} * engine.paddedWidth + engine.offsetX;
}

// The columns beside the frame, which repeat its ends.
template <class T>
void RepeatEnds(const DefocusEngine& engine, ComplexSample<T>* frameRow) {
  const std::int32_t width = engine.passSource->width;
  std::fill_n(frameRow - engine.offsetX, engine.offsetX, frameRow[0]);
  std::fill_n(frameRow + width, engine.paddedWidth - engine.offsetX - width, frameRow[width - 1]);
}

// The emphasis of a plane, in the precision of the mode.
template <class T>
struct Curve {
  explicit Curve(float emphasis) : g(emphasis), curve(MakeEmphasisCurve(emphasis)) {}

  void Apply(double* values, std::int32_t count) const {
    if constexpr (sizeof(T) == sizeof(float)) {
      for (std::int32_t i = 0; i < count; ++i) {
        values[i] = ApplyEmphasis(NarrowToFloat(values[i]), g);
      }
    } else if (curve.on) {
      GetRowKernels().applyCurve(curve, count, values);
    }
  }

  void Undo(double* values, std::int32_t count) const {
    if constexpr (sizeof(T) == sizeof(float)) {
      for (std::int32_t i = 0; i < count; ++i) {
        values[i] = UndoEmphasis(NarrowToFloat(values[i]), g);
      }
    } else if (curve.on) {
      GetRowKernels().undoCurve(curve, values, 1.0, count, values);
    }
  }

  float g;
  EmphasisCurve curve;
};

template <class T>
void FillPlaneRow(const DefocusEngine& engine, const Curve<T>& curve, std::int32_t y) {
  const std::int32_t width = engine.passSource->width;
  ComplexSample<T>* row = FrameRow<T>(engine, engine.passTarget, y);
  double values[kPiece];
  for (std::int32_t x = 0; x < width; x += kPiece) {
    const std::int32_t count = std::min(kPiece, width - x);
    FillFromPicture(*engine.passSource, engine.passChannelBit, {x, y, count}, values);
    if (HasCurve(engine)) {
      curve.Apply(values, count);
    }
    for (std::int32_t i = 0; i < count; ++i) {
      row[x + i] = {static_cast<T>(values[i]), T{0}};
    }
  }
}

template <class T, class Sample>
void RawRow(const DefocusEngine& engine, double scale, std::int32_t channel, std::int32_t y) {
  const ImageRec& source = *engine.passSource;
  const Sample* sample = SampleRow<Sample>(source, y) + channel;
  ComplexSample<T>* row = FrameRow<T>(engine, engine.passTarget, y);
  for (std::int32_t x = 0; x < source.width; ++x, sample += source.channels) {
    row[x] = {Narrow<T>(static_cast<double>(*sample) * scale), T{0}};
  }
}

// One channel of a row, times scale.
template <class T>
void ChannelRow(const DefocusEngine& engine, double scale, std::int32_t channel, std::int32_t y) {
  switch (engine.passSource->sampleType) {
    case kSampleU8:
      RawRow<T, std::uint8_t>(engine, scale, channel, y);
      break;
    case kSampleU16:
      RawRow<T, std::uint16_t>(engine, scale, channel, y);
      break;
    case kSampleU32:
      RawRow<T, std::uint32_t>(engine, scale, channel, y);
      break;
    default:
      RawRow<T, float>(engine, scale, channel, y);
      break;
  }
}

template <class T, class Sample>
void StoreRawRow(const DefocusEngine& engine, std::int32_t y) {
  ImageRec* dest = engine.passDest;
  Sample* sample = SampleRow<Sample>(dest, y) + engine.passChannel;
  const ComplexSample<T>* row = FrameRow<T>(engine, engine.passTarget, y);
  for (std::int32_t x = 0; x < dest->width; ++x, sample += dest->channels) {
    *sample = StoreRaw<Sample>(static_cast<double>(row[x].re));
  }
}

template <class T>
void PictureRow(const DefocusEngine& engine, const Curve<T>& curve, std::int32_t y) {
  ImageRec* dest = engine.passDest;
  const bool withAlpha = (engine.passChannelBit & kBitAlpha) != 0;
  void* const grids[] = {engine.kernelLuma, engine.kernelCr, engine.kernelCb, engine.passTarget};
  double planes[4][kPiece];
  for (std::int32_t x = 0; x < dest->width; x += kPiece) {
    const std::int32_t count = std::min(kPiece, dest->width - x);
    for (int plane = 0; plane < (withAlpha ? 4 : 3); ++plane) {
      const ComplexSample<T>* row = FrameRow<T>(engine, grids[plane], y) + x;
      for (std::int32_t i = 0; i < count; ++i) {
        planes[plane][i] = static_cast<double>(row[i].re);
      }
    }
    curve.Undo(planes[0], count);
    if (withAlpha && engine.emphasisAlpha) {
      curve.Undo(planes[3], count);
    }
    StoreToPicture({planes[0], planes[1], planes[2], withAlpha ? planes[3] : nullptr},
                   {1.0, 1.0, 1.0}, {x, y, count}, kFull32, dest);
  }
}

}  // namespace

template <class T>
void KernelPsfInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const double scale = static_cast<double>(kMaskScales[engine->passSource->sampleType]);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    ChannelRow<T>(*engine, scale, 0, y);
  }
}

template <class T>
void KernelPlaneInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const Curve<T> curve(engine->emphasis);
  std::int32_t y = first;
  for (; y <= last && !engine->CancelRequested(); ++y) {
    KeepKernelRows<T>(*engine, y, y);
    FillPlaneRow(*engine, curve, y);
    if (engine->passEdgeMode == kEdgeReplicate) {
      RepeatEnds(*engine, FrameRow<T>(*engine, engine->passTarget, y));
    }
  }
  // Rows that a cancelled pass does not reach hold the plane before, or nothing after a plane of
  // chroma.
  KeepKernelRows<T>(*engine, y, last);
  if (engine->passChannelBit == kBitCb || engine->passChannelBit == kBitAlpha) {
    for (; y <= last; ++y) {
      std::fill_n(FrameRow<T>(*engine, engine->passTarget, y) - engine->offsetX,
                  engine->paddedWidth, ComplexSample<T>{});
    }
  }
  if (engine->passEdgeMode == kEdgeReplicate) {
    RepeatEdgeRows<ComplexSample<T>>(engine, first, last);
  }
}

template <class T>
void KernelChannelInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    ChannelRow<T>(*engine, 1.0, engine->passChannel, y);
    if (engine->passEdgeMode == kEdgeReplicate) {
      RepeatEnds(*engine, FrameRow<T>(*engine, engine->passTarget, y));
    }
  }
  if (engine->passEdgeMode == kEdgeReplicate) {
    RepeatEdgeRows<ComplexSample<T>>(engine, first, last);
  }
}

template <class T>
void KeepKernelRows(const DefocusEngine& engine, std::int32_t first, std::int32_t last) {
  if (engine.passKept == nullptr) {
    return;
  }
  for (std::int32_t y = first; y <= last; ++y) {
    std::copy_n(FrameRow<T>(engine, engine.kernelWork, y), engine.frameWidth,
                FrameRow<T>(engine, engine.passKept, y));
  }
}

template <class T>
void KernelPictureOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const Curve<T> curve(engine->emphasis);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    PictureRow(*engine, curve, y);
  }
}

template <class T>
void KernelChannelOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    switch (engine->passDest->sampleType) {
      case kSampleU8:
        StoreRawRow<T, std::uint8_t>(*engine, y);
        break;
      case kSampleU16:
        StoreRawRow<T, std::uint16_t>(*engine, y);
        break;
      case kSampleU32:
        StoreRawRow<T, std::uint32_t>(*engine, y);
        break;
      default:
        StoreRawRow<T, float>(*engine, y);
        break;
    }
  }
}

template void KernelPsfInputPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelPsfInputPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelPlaneInputPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelPlaneInputPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelChannelInputPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelChannelInputPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void KeepKernelRows<float>(const DefocusEngine&, std::int32_t, std::int32_t);
template void KeepKernelRows<double>(const DefocusEngine&, std::int32_t, std::int32_t);
template void KernelPictureOutputPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelPictureOutputPass<double>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelChannelOutputPass<float>(DefocusEngine*, std::int32_t, std::int32_t);
template void KernelChannelOutputPass<double>(DefocusEngine*, std::int32_t, std::int32_t);

}  // namespace lx
