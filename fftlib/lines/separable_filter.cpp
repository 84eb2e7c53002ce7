// The separable filter: lines of an image through a kernel, by real transforms.
#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>

#include "baselib/utils/convert.h"
#include "baselib/utils/heap.h"
#include "fftlib/fftlib.h"
#include "fftlib/lines/line_transforms.h"
#include "fftlib/planes/sample_types.h"

namespace lx {
namespace {

constexpr std::uint32_t kAlongRows = 1;
constexpr std::uint32_t kAlongColumns = 2;

// Two lines that go with the scope.
class FilterLines {
 public:
  explicit FilterLines(std::int32_t length)
      : length_(length),
        block_(static_cast<float*>(lx_aligned_malloc(
            2 * static_cast<std::uint32_t>(length) * static_cast<std::uint32_t>(sizeof(float)), -1,
            false))) {
    if (block_ != nullptr) {
      std::fill_n(block_, 2 * std::ptrdiff_t{length}, 0.0F);
    }
  }
  ~FilterLines() { lx_aligned_free(block_, false); }
  FilterLines(const FilterLines&) = delete;
  FilterLines& operator=(const FilterLines&) = delete;

  bool AreThere() const { return block_ != nullptr; }
  float* Kernel() const { return block_; }
  float* Line() const { return block_ + length_; }

 private:
  std::int32_t length_;
  float* block_;
};

// The kernel and its mirror image in a line of zeros, with sum 1.
// Intended: the mirror image lies one place short of where a circle would have it, and the last
// place stays 0. A sum of 0 or below is multiplied by itself.
void FillKernelLine(const DefocusEngine& engine, std::int32_t length, float* line) {
  const std::int32_t count = std::min(engine.separableKernelLength, length);
  std::copy_n(engine.separableKernel, count, line);
  for (std::int32_t i = 1; i < count && i < length; ++i) {
    line[length - 1 - i] = engine.separableKernel[i];
  }
  const double sum = std::accumulate(line, line + length, 0.0);
  const double factor = sum > 0.0 ? 1.0 / sum : sum;
  for (std::int32_t i = 0; i < length; ++i) {
    line[i] = NarrowToFloat(line[i] * factor);
  }
}

// Samples of one channel along a row or a column.
template <class Sample>
struct Samples {
  Sample* first;
  std::ptrdiff_t step;
  std::int32_t count;
};

template <class Sample>
void LoadLine(const Samples<const Sample>& from, std::int32_t edgeMode, std::int32_t length,
              float* line) {
  const std::int32_t start = (length - from.count) / 2;
  const std::int32_t end = start + from.count;
  for (std::int32_t i = 0; i < from.count; ++i) {
    line[start + i] = static_cast<float>(from.first[i * from.step]);
  }
  const bool repeats = edgeMode == kEdgeReplicate;
  std::fill(line, line + start, repeats ? line[start] : 0.0F);
  std::fill(line + end, line + length, repeats ? line[end - 1] : 0.0F);
}

template <class Sample>
Sample StoreSample(float value) {
  if constexpr (std::is_same_v<Sample, float>) {
    return value;
  } else {
    return static_cast<Sample>(
        TruncateToUnsigned(static_cast<double>(value), SampleScale<Sample>::full));
  }
}

template <class Sample>
void StoreLine(const float* line, std::int32_t length, const Samples<Sample>& to) {
  const float* from = line + (length - to.count) / 2;
  for (std::int32_t i = 0; i < to.count; ++i) {
    to.first[i * to.step] = StoreSample<Sample>(from[i]);
  }
}

// What distinguishes the two passes.
struct Direction {
  bool alongRows;
  const ImageRec* source;
  std::int32_t padded;  // length of a line with its margins
};

template <class Sample>
void FilterLine(const DefocusEngine& engine, const Direction& direction, std::int32_t channel,
                std::int32_t index, const FilterLines& lines) {
  const auto samples = [&](auto* data, std::int32_t channels) {
    const ImageRec& image = *direction.source;
    const std::ptrdiff_t pixel = channels;
    const std::ptrdiff_t row = pixel * image.width;
    return Samples<std::remove_pointer_t<decltype(data)>>{
        data + index * (direction.alongRows ? row : pixel) + channel,
        direction.alongRows ? pixel : row, direction.alongRows ? image.width : image.height};
  };
  ImageRec* dest = engine.passDest;
  const LineTransforms<float>* transforms = FindRealLineTransforms(direction.padded);
  if (transforms == nullptr) {
    return;
  }
  LoadLine(samples(static_cast<const Sample*>(direction.source->data), direction.source->channels),
           engine.edgeMode, direction.padded, lines.Line());
  transforms->forward(lines.Line());
  transforms->multiply(lines.Line(), lines.Kernel());
  transforms->inverse(lines.Line());
  StoreLine(lines.Line(), direction.padded,
            samples(static_cast<Sample*>(dest->data), dest->channels));
}

void FilterRange(DefocusEngine* engine, const Direction& direction, std::int32_t first,
                 std::int32_t last) {
  engine->status.store(kStatusOk, std::memory_order_relaxed);
  const FilterLines lines(direction.padded);
  if (!lines.AreThere()) {
    engine->status.store(kStatusNoMemory, std::memory_order_relaxed);
    return;
  }
  FillKernelLine(*engine, direction.padded, lines.Kernel());
  if (const LineTransforms<float>* transforms = FindRealLineTransforms(direction.padded)) {
    transforms->forward(lines.Kernel());
    transforms->scale(lines.Kernel());
  }
  using Filter = void (*)(const DefocusEngine&, const Direction&, std::int32_t, std::int32_t,
                          const FilterLines&);
  constexpr Filter kFilters[] = {FilterLine<std::uint8_t>, FilterLine<std::uint16_t>,
                                 FilterLine<std::uint32_t>, FilterLine<float>};
  const std::int32_t channels =
      std::min<std::int32_t>(direction.source->channels, engine->passDest->channels);
  for (std::int32_t c = 0; c < channels; ++c) {
    if ((engine->passChannelBit & (1U << (static_cast<std::uint32_t>(c) & 31U))) == 0) {
      continue;
    }
    for (std::int32_t i = first; i <= last && !engine->CancelRequested(); ++i) {
      kFilters[direction.source->sampleType](*engine, direction, c, i, lines);
    }
  }
}

void FilterRowsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  FilterRange(engine, {true, engine->separableRowSource, engine->separablePaddedWidth}, first,
              last);
}

void FilterColumnsPass(DefocusEngine* engine, std::int32_t first, std::int32_t last) {
  FilterRange(engine, {false, engine->separableColumnSource, engine->separablePaddedHeight}, first,
              last);
}

}  // namespace

bool DefocusEngine::PrepareSeparable(const ImageRec* image) {
  separableSource = nullptr;
  if (!ImageHasSamples(image)) {
    return Fail(kStatusSizeRange);
  }
  separableWidth = image->width;
  separableHeight = image->height;
  const std::int64_t margins = 2 * std::int64_t{separableKernelLength};
  const std::int64_t width = NextPowerOfTwo(separableWidth + margins);
  const std::int64_t height = NextPowerOfTwo(separableHeight + margins);
  if (width < 2 || width > kLargestPaddedSize || height < 2 || height > kLargestPaddedSize) {
    return Fail(kStatusSizeRange);
  }
  separablePaddedWidth = static_cast<std::int32_t>(width);
  separablePaddedHeight = static_cast<std::int32_t>(height);
  // Intended: the clone of an earlier call is not freed.
  separableWork = ImageClone(image);
  if (separableWork == nullptr) {
    return Fail(kStatusNoMemory);
  }
  separableSource = image;
  return true;
}

bool DefocusEngine::FilterSeparable(ImageRec* dest, std::uint32_t channelMask,
                                    std::uint32_t direction) {
  if (separableKernel == nullptr || separableSource == nullptr) {
    return Fail(kStatusNotLoaded);
  }
  if (dest == nullptr || dest->width != separableWidth || dest->height != separableHeight ||
      dest->sampleType != separableSource->sampleType) {
    return Fail(kStatusDestination);
  }
  if (!ImageHasSamples(dest) || !ImageHasSamples(separableSource)) {
    return Fail(kStatusSizeRange);
  }
  const bool rows = (direction & kAlongRows) != 0;
  const bool columns = (direction & kAlongColumns) != 0;
  passChannelBit = channelMask;
  if (rows) {
    separableRowSource = separableSource;
    passDest = columns ? separableWork : dest;
    RunRows(FilterRowsPass, dest->height);
    if (GetStatus() != kStatusOk) {
      return false;
    }
  }
  if (columns) {
    separableColumnSource = rows ? separableWork : separableSource;
    passDest = dest;
    RunRows(FilterColumnsPass, dest->width);
    if (GetStatus() != kStatusOk) {
      return false;
    }
  }
  return true;
}

}  // namespace lx
