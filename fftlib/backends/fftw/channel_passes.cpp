#include <cmath>
#include <cstddef>
#include <cstdint>
#include <type_traits>

#include "baselib/utils/convert.h"
#include "fftlib/backends/fftw/passes.h"
#include "fftlib/fftlib.h"
#include "fftlib/planes/edge_rows.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

// Alpha goes without gamma unless it is treated like the picture.
bool HasGamma(const DefocusEngine& engine) {
  return engine.gammaActive && engine.gamma != 1.0F &&
         (engine.passChannelBit != kBitAlpha || engine.emphasisAlpha);
}

// The grid's row for row y of the frame, at its first pixel.
std::ptrdiff_t FrameStart(const DefocusEngine& engine, std::int32_t y) {
  return static_cast<std::ptrdiff_t>(engine.offsetY + y) * engine.paddedWidth + engine.offsetX;
}

template <class Sample>
double ToLinear(Sample sample, double gamma) {
  if constexpr (std::is_same_v<Sample, float>) {
    return std::pow(static_cast<double>(sample), gamma);
  } else {
    return std::pow(static_cast<double>(sample) * SampleScale<Sample>::toUnit, gamma);
  }
}

template <class Sample>
void InputChannelRow(const DefocusEngine& engine, std::int32_t y) {
  const ImageRec& source = *engine.passSource;
  const Sample* sample = SampleRow<Sample>(source, y) + engine.passChannel;
  double* row = static_cast<double*>(engine.passTarget) + FrameStart(engine, y);
  const bool withGamma = HasGamma(engine);
  const double gamma = engine.gamma;
  for (std::int32_t x = 0; x < source.width; ++x, sample += source.channels) {
    row[x] = withGamma ? ToLinear(*sample, gamma) : static_cast<double>(*sample);
  }
  if (engine.passEdgeMode == kEdgeReplicate) {
    const double left = row[0];
    const double right = row[source.width - 1];
    for (std::int32_t x = -engine.offsetX; x < 0; ++x) {
      row[x] = left;
    }
    for (std::int32_t x = source.width; x < engine.paddedWidth - engine.offsetX; ++x) {
      row[x] = right;
    }
  }
}

template <class Sample>
Sample StoreGamma(double value, const DefocusEngine& engine, double exponent) {
  const double shaped = (std::pow(value, exponent) + static_cast<double>(engine.outputOffset)) *
                        static_cast<double>(engine.outputGain);
  if constexpr (std::is_same_v<Sample, float>) {
    return NarrowToFloat(shaped);
  } else {
    return StoreRaw<Sample>(ClampToUnit(shaped) * SampleScale<Sample>::limit);
  }
}

template <class Sample>
void OutputChannelRow(const DefocusEngine& engine, std::int32_t y) {
  ImageRec* dest = engine.passDest;
  Sample* sample = SampleRow<Sample>(dest, y) + engine.passChannel;
  const double* row = static_cast<double*>(engine.passTarget) + FrameStart(engine, y);
  const double side = engine.paddedWidth;
  const double scale = 1.0 / (side * side);
  const bool withGamma = HasGamma(engine);
  const double exponent = 1.0 / engine.gamma;
  for (std::int32_t x = 0; x < dest->width; ++x, sample += dest->channels) {
    const double value = scale * row[x];
    *sample = withGamma ? StoreGamma<Sample>(value, engine, exponent) : StoreRaw<Sample>(value);
  }
}

using RowFunction = void (*)(const DefocusEngine& engine, std::int32_t y);

// Indexed by sample type.
constexpr RowFunction kInputRow[] = {InputChannelRow<std::uint8_t>, InputChannelRow<std::uint16_t>,
                                     InputChannelRow<std::uint32_t>, InputChannelRow<float>};
constexpr RowFunction kOutputRow[] = {OutputChannelRow<std::uint8_t>,
                                      OutputChannelRow<std::uint16_t>,
                                      OutputChannelRow<std::uint32_t>, OutputChannelRow<float>};

void RunChannelRows(DefocusEngine* engine, RowFunction rowFunction, std::int32_t first,
                    std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  for (std::int32_t y = first; y <= last && !engine->CancelRequested(); ++y) {
    rowFunction(*engine, y);
  }
}

}  // namespace

void ChannelInputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunChannelRows(engine, kInputRow[engine->passSource->sampleType], first, last);
  if (engine->passEdgeMode == kEdgeReplicate) {
    RepeatEdgeRows<double>(engine, first, last);
  }
}

void ChannelOutputPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  RunChannelRows(engine, kOutputRow[engine->passDest->sampleType], first, last);
}

}  // namespace lx
