#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "fftlib/fftlib.h"
#include "fftlib/fftlib/colour_transform.h"
#include "fftlib/fftlib/edge_rows.h"
#include "fftlib/fftlib/emphasis_curve.h"
#include "fftlib/fftlib/passes.h"
#include "fftlib/fftlib/row_kernels.h"
#include "fftlib/fftlib/sample_types.h"

namespace lx {
namespace {

constexpr double kMaskScale = 0.003921568859368563;

double Luma(double r, double g, double b) { return kLumaB * b + kLumaG * g + kLumaR * r; }
double Cr(double r, double g, double b) { return kCrR * r + kCrG * g + kCrB * b + 0.5; }
double Cb(double r, double g, double b) { return kCbR * r + kCbG * g + kCbB * b + 0.5; }

template <class Sample, class Formula>
void FillFromColour(const Sample* pixels, std::int32_t width, std::int32_t channels,
                    Formula formula, double* row) {
  constexpr double kScale = SampleScale<Sample>::toUnit;
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    row[x] =
        formula(static_cast<double>(pixels[0]) * kScale, static_cast<double>(pixels[1]) * kScale,
                static_cast<double>(pixels[2]) * kScale);
  }
}

template <class Sample>
void FillLuma(const Sample* pixels, std::int32_t width, std::int32_t channels, double* row) {
  FillFromColour(pixels, width, channels, Luma, row);
}

// Intended: luma of 32-bit pixels comes from the three low bytes of the first sample, at
// the 32-bit scale, while the other planes read whole samples.
template <>
void FillLuma(const std::uint32_t* pixels, std::int32_t width, std::int32_t channels, double* row) {
  constexpr double kScale = SampleScale<std::uint32_t>::toUnit;
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    row[x] = Luma((pixels[0] & 0xFFU) * kScale, ((pixels[0] >> 8U) & 0xFFU) * kScale,
                  ((pixels[0] >> 16U) & 0xFFU) * kScale);
  }
}

template <class Sample>
void FillAlpha(const Sample* pixels, std::int32_t width, std::int32_t channels, double* row) {
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    row[x] = static_cast<double>(pixels[3]) * SampleScale<Sample>::toUnit;
  }
}

// Which kernel makes the plane in work.
RowKernels::Fill FrameKernel(std::uint32_t channelBit) {
  const RowKernels& kernels = GetRowKernels();
  return channelBit == kBitLuma ? kernels.luma
         : channelBit == kBitCr ? kernels.cr
         : channelBit == kBitCb ? kernels.cb
                                : kernels.alpha;
}

template <class Sample>
void FillPlane(const DefocusEngine& engine, std::int32_t y, double* row) {
  const ImageRec& source = *engine.passSource;
  const Sample* pixels = SampleRow<Sample>(source, y);
  const std::int32_t width = source.width;
  const std::int32_t channels = source.channels;
  if constexpr (std::is_same_v<Sample, std::uint16_t>) {
    if (channels == 4) {
      FrameKernel(engine.passChannelBit)(pixels, width, row);
      return;
    }
  }
  switch (engine.passChannelBit) {
    case kBitLuma:
      FillLuma(pixels, width, channels, row);
      break;
    case kBitCr:
      FillFromColour(pixels, width, channels, Cr, row);
      break;
    case kBitCb:
      FillFromColour(pixels, width, channels, Cb, row);
      break;
    default:
      FillAlpha(pixels, width, channels, row);
      break;
  }
}

// The columns beside the frame. They take the values after the curve.
void PadColumns(const DefocusEngine& engine, double* gridRow, double left, double right) {
  const std::int32_t frameEnd = engine.offsetX + engine.passSource->width;
  std::fill(gridRow, gridRow + engine.offsetX, left);
  std::fill(gridRow + frameEnd, gridRow + engine.paddedWidth, right);
}

double* GridRow(const DefocusEngine& engine, std::int32_t row) {
  return engine.passTarget + static_cast<std::ptrdiff_t>(row) * engine.paddedWidth;
}

void ClearGridRows(const DefocusEngine& engine, std::int32_t first, std::int32_t end) {
  std::fill(GridRow(engine, first), GridRow(engine, end), 0.0);
}

// The curve of the plane in work; chroma has none.
EmphasisCurve PlaneCurve(const DefocusEngine& engine) {
  const bool curved = engine.passChannelBit == kBitLuma ||
                      (engine.passChannelBit == kBitAlpha && engine.emphasisAlpha);
  return curved ? MakeEmphasisCurve(engine.emphasis) : EmphasisCurve{};
}

// One grid row of a plane. Float samples are not read, and give a row of zeros.
void InputRow(const DefocusEngine& engine, const EmphasisCurve& curve, std::int32_t y) {
  double* gridRow = GridRow(engine, engine.offsetY + y);
  double* frameRow = gridRow + engine.offsetX;
  const std::int32_t width = engine.passSource->width;
  switch (engine.passSource->sampleType) {
    case kSampleU8:
      FillPlane<std::uint8_t>(engine, y, frameRow);
      break;
    case kSampleU16:
      FillPlane<std::uint16_t>(engine, y, frameRow);
      break;
    case kSampleU32:
      FillPlane<std::uint32_t>(engine, y, frameRow);
      break;
    default:
      std::fill(frameRow, frameRow + width, 0.0);
      break;
  }
  if (curve.on) {
    GetRowKernels().applyCurve(curve, width, frameRow);
  }
  if (engine.passEdgeMode == kEdgeReplicate) {
    PadColumns(engine, gridRow, frameRow[0], frameRow[width - 1]);
  } else {
    PadColumns(engine, gridRow, 0.0, 0.0);
  }
}

}  // namespace

void KeepRows(const DefocusEngine& engine, std::int32_t first, std::int32_t last) {
  if (engine.passKept == nullptr) {
    return;
  }
  for (std::int32_t y = first; y <= last; ++y) {
    const std::ptrdiff_t start =
        static_cast<std::ptrdiff_t>(engine.offsetY + y) * engine.paddedWidth + engine.offsetX;
    std::copy_n(engine.workSpatial + start, engine.frameWidth, engine.passKept + start);
  }
}

void PsfInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const ImageRec& mask = *engine->passSource;
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    const auto* pixels =
        static_cast<const std::uint8_t*>(mask.data) + static_cast<std::ptrdiff_t>(y) * mask.width;
    double* row = GridRow(*engine, engine->offsetY + y) + engine->offsetX;
    for (std::int32_t x = 0; x < mask.width; ++x) {
      row[x] = pixels[x] * kMaskScale;
    }
  }
}

// The grid still holds the plane before. A row that a cancelled pass does not reach, and
// margins of zero, are therefore cleared here, by the range that they belong to.
void PlaneInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  if (first > last) {
    return;
  }
  const EmphasisCurve curve = PlaneCurve(*engine);
  std::int32_t y = first;
  for (; y <= last && !engine->CancelRequested(); ++y) {
    KeepRows(*engine, y, y);
    InputRow(*engine, curve, y);
  }
  KeepRows(*engine, y, last);
  ClearGridRows(*engine, engine->offsetY + y, engine->offsetY + last + 1);
  if (engine->passEdgeMode == kEdgeReplicate) {
    RepeatEdgeRows(engine, first, last);
    return;
  }
  const std::int32_t height = engine->passSource->height;
  if (first == 0) {
    ClearGridRows(*engine, 0, engine->offsetY);
  }
  if (last == height - 1) {
    ClearGridRows(*engine, engine->offsetY + height, engine->paddedHeight);
  }
}

}  // namespace lx
