#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "baselib/utils/convert.h"
#include "fftlib/fftlib.h"
#include "fftlib/fftlib/colour_transform.h"
#include "fftlib/fftlib/emphasis_curve.h"
#include "fftlib/fftlib/passes.h"
#include "fftlib/fftlib/row_kernels.h"
#include "fftlib/fftlib/sample_types.h"

namespace lx {
namespace {

template <class Sample>
Sample StoreUnit(double value) {
  // Narrow samples go through the 32-bit conversion, which works on several at once.
  using Whole = std::conditional_t<sizeof(Sample) < 4, std::int32_t, std::uint64_t>;
  return static_cast<Sample>(
      static_cast<Whole>(ClampToUnit(value) * SampleScale<Sample>::full + 0.5));
}

template <class Sample>
Sample StoreAlpha(double value) {
  return StoreUnit<Sample>(value);
}

// Intended: alpha of 32-bit pixels keeps its low 16 bits only.
template <>
std::uint32_t StoreAlpha(double value) {
  return StoreUnit<std::uint32_t>(value) & 0xFFFFU;
}

template <class Sample>
void StoreRow(const PlaneRow& planes, const PlaneScale& scale, std::int32_t width,
              std::int32_t channels, Sample* pixels) {
  if constexpr (std::is_same_v<Sample, std::uint16_t>) {
    if (channels == 4) {
      GetRowKernels().store(planes, scale, width, pixels);
      return;
    }
  }
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    const double y = scale.luma * planes.luma[x];
    const double cr = scale.chroma * planes.cr[x] - 0.5;
    const double cb = scale.chroma * planes.cb[x] - 0.5;
    pixels[0] = StoreUnit<Sample>(y + kRCr * cr);
    pixels[1] = StoreUnit<Sample>(kGY * y - kGCr * cr - kGCb * cb);
    pixels[2] = StoreUnit<Sample>(kBY * y + kBCb * cb);
    if (planes.alpha != nullptr) {
      pixels[3] = StoreAlpha<Sample>(scale.alpha * planes.alpha[x]);
    }
  }
}

// A piece of a row at a time, so that what the inverse curve makes of it stays at hand.
constexpr std::int32_t kPiece = 256;

template <class Sample>
void OutputRow(const DefocusEngine& engine, const EmphasisCurve& curve, std::int32_t y) {
  ImageRec* dest = engine.passDest;
  const double side = engine.paddedWidth;
  const double scale = 1.0 / (side * side);
  const bool withAlpha = (engine.passChannelBit & kBitAlpha) != 0;
  double luma[kPiece];
  double alpha[kPiece];
  for (std::int32_t x = 0; x < dest->width; x += kPiece) {
    const std::int32_t width = std::min(kPiece, dest->width - x);
    const std::ptrdiff_t start =
        static_cast<std::ptrdiff_t>(engine.offsetY + y) * engine.paddedWidth + engine.offsetX + x;
    PlaneRow planes{engine.lumaResult + start, engine.crResult + start, engine.cbResult + start,
                    withAlpha ? engine.passTarget + start : nullptr};
    PlaneScale by{scale, scale, scale};
    const auto uncurve = [&](const double*& plane, double& planeScale, double* piece) {
      GetRowKernels().undoCurve(curve, plane, planeScale, width, piece);
      plane = piece;
      planeScale = 1.0;
    };
    if (curve.on) {
      uncurve(planes.luma, by.luma, luma);
    }
    if (curve.on && withAlpha && engine.emphasisAlpha) {
      uncurve(planes.alpha, by.alpha, alpha);
    }
    StoreRow(planes, by, width, dest->channels,
             SampleRow<Sample>(dest, y) + static_cast<std::ptrdiff_t>(x) * dest->channels);
  }
}

}  // namespace

void PictureOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const EmphasisCurve curve = MakeEmphasisCurve(engine->emphasis);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    switch (engine->passDest->sampleType) {
      case kSampleU8:
        OutputRow<std::uint8_t>(*engine, curve, y);
        break;
      case kSampleU16:
        OutputRow<std::uint16_t>(*engine, curve, y);
        break;
      case kSampleU32:
        OutputRow<std::uint32_t>(*engine, curve, y);
        break;
      default:
        break;  // float images are left as they are
    }
  }
}

}  // namespace lx
