#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "baselib/utils/convert.h"
#include "fftlib/fftlib.h"
#include "fftlib/fftlib/colour_transform.h"
#include "fftlib/fftlib/emphasis.h"
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

// What a row of the output needs beside its planes.
struct RowScale {
  double scale;  // of the planes: 1 / (N * N)
  double emphasis;
};

// Curved: whether the inverse curve is in force.
template <bool Curved, class Sample>
void StoreColourRow(const PlaneRow& planes, const RowScale& by, std::int32_t width,
                    std::int32_t channels, Sample* pixels) {
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    double y = by.scale * planes.luma[x];
    if constexpr (Curved) {
      y = UndoEmphasisD(y, by.emphasis);
    }
    const double cr = by.scale * planes.cr[x] - 0.5;
    const double cb = by.scale * planes.cb[x] - 0.5;
    pixels[0] = StoreUnit<Sample>(y + kRCr * cr);
    pixels[1] = StoreUnit<Sample>(kGY * y - kGCr * cr - kGCb * cb);
    pixels[2] = StoreUnit<Sample>(kBY * y + kBCb * cb);
  }
}

template <bool Curved, class Sample>
void StoreAlphaRow(const double* plane, const RowScale& by, std::int32_t width,
                   std::int32_t channels, Sample* pixels) {
  for (std::int32_t x = 0; x < width; ++x, pixels += channels) {
    double alpha = by.scale * plane[x];
    if constexpr (Curved) {
      alpha = UndoEmphasisD(alpha, by.emphasis);
    }
    pixels[3] = StoreAlpha<Sample>(alpha);
  }
}

template <class Sample>
void OutputRow(const DefocusEngine& engine, std::int32_t y) {
  ImageRec* dest = engine.passDest;
  const std::ptrdiff_t start =
      static_cast<std::ptrdiff_t>(engine.offsetY + y) * engine.paddedWidth + engine.offsetX;
  const double side = engine.paddedWidth;
  const RowScale by{1.0 / (side * side), engine.emphasis};
  const bool curved = HasEmphasis(by.emphasis);
  Sample* pixels = SampleRow<Sample>(dest, y);
  const bool withAlpha = (engine.passChannelBit & kBitAlpha) != 0;
  const PlaneRow planes{engine.lumaResult + start, engine.crResult + start, engine.cbResult + start,
                        withAlpha ? engine.passTarget + start : nullptr};
  if constexpr (std::is_same_v<Sample, std::uint16_t>) {
    if (!curved && dest->channels == 4) {
      GetRowKernels().store(planes, by.scale, dest->width, pixels);
      return;
    }
  }
  const auto storeColour = curved ? StoreColourRow<true, Sample> : StoreColourRow<false, Sample>;
  storeColour(planes, by, dest->width, dest->channels, pixels);
  if (withAlpha) {
    const auto storeAlpha =
        curved && engine.emphasisAlpha ? StoreAlphaRow<true, Sample> : StoreAlphaRow<false, Sample>;
    storeAlpha(planes.alpha, by, dest->width, dest->channels, pixels);
  }
}

}  // namespace

void PictureOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    switch (engine->passDest->sampleType) {
      case kSampleU8:
        OutputRow<std::uint8_t>(*engine, y);
        break;
      case kSampleU16:
        OutputRow<std::uint16_t>(*engine, y);
        break;
      case kSampleU32:
        OutputRow<std::uint32_t>(*engine, y);
        break;
      default:
        break;  // float images are left as they are
    }
  }
}

}  // namespace lx
