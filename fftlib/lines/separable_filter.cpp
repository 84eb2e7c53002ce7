// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/lines/separable_filter.h"

#include <algorithm>
#include <cstddef>
#include <cstdint>
#include <numeric>
#include <type_traits>

#include "baselib/utils/convert.h"
#include "baselib/utils/heap.h"
#include "fftlib/core/run.h"
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

  bool IsAllocated() const { return block_ != nullptr; }
  float* Filter() const { return block_; }
  float* Line() const { return block_ + length_; }

 private:
  std::int32_t length_;
  float* block_;
};

// The weights and their mirror image in a line of zeros, with sum 1.
// Intended: the mirror image lies one place short of where a circle would have it, and the last
// place stays 0. A sum of 0 or below is multiplied by itself.
void FillFilterLine(const float* weights, std::int32_t weightCount, std::int32_t length,
                    float* line) {
  const std::int32_t count = std::min(weightCount, length);
  std::copy_n(weights, count, line);
  for (std::int32_t i = 1; i < count && i < length; ++i) {
    line[length - 1 - i] = weights[i];
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

// Filters the lines of one direction.
struct FilterPass {
  const ImageRec* source;
  ImageRec* dest;
  const float* weights;
  std::int32_t weightCount;
  std::uint32_t channelMask;
  std::int32_t edgeMode;
  bool alongRows;
  std::int32_t padded;  // length of a line with its margins

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;

  // One channel of line index of an image of the source's size.
  template <class Sample>
  Samples<Sample> LineOf(Sample* data, std::int32_t channels, std::int32_t channel,
                         std::int32_t index) const {
    const std::ptrdiff_t pixel = channels;
    const std::ptrdiff_t row = pixel * source->width;
    return {data + index * (alongRows ? row : pixel) + channel, alongRows ? pixel : row,
            alongRows ? source->width : source->height};
  }

  template <class Sample>
  void FilterLine(std::int32_t channel, std::int32_t index, const FilterLines& lines) const {
    const LineTransforms<float>* transforms = FindRealLineTransforms(padded);
    if (transforms == nullptr) {
      return;
    }
    LoadLine(LineOf(static_cast<const Sample*>(source->data), source->channels, channel, index),
             edgeMode, padded, lines.Line());
    transforms->forward(lines.Line());
    transforms->multiply(lines.Line(), lines.Filter());
    transforms->inverse(lines.Line());
    StoreLine(lines.Line(), padded,
              LineOf(static_cast<Sample*>(dest->data), dest->channels, channel, index));
  }
};

void FilterPass::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  const FilterLines lines(padded);
  if (!lines.IsAllocated()) {
    rows.SetStatus(kStatusNoMemory);
    return;
  }
  FillFilterLine(weights, weightCount, padded, lines.Filter());
  if (const LineTransforms<float>* transforms = FindRealLineTransforms(padded)) {
    transforms->forward(lines.Filter());
    transforms->scale(lines.Filter());
  }
  using Filter = void (FilterPass::*)(std::int32_t, std::int32_t, const FilterLines&) const;
  constexpr Filter kFilters[] = {
      &FilterPass::FilterLine<std::uint8_t>, &FilterPass::FilterLine<std::uint16_t>,
      &FilterPass::FilterLine<std::uint32_t>, &FilterPass::FilterLine<float>};
  const Filter filter = kFilters[source->sampleType];
  const std::int32_t channels = std::min<std::int32_t>(source->channels, dest->channels);
  for (std::int32_t c = 0; c < channels; ++c) {
    if (HasChannel(channelMask, c)) {
      ForEachRow(rows, first, last, [&](std::int32_t i) { (this->*filter)(c, i, lines); });
    }
  }
}

}  // namespace

SeparableFilter::~SeparableFilter() {
  weights_.reset();
  ImageFree(work_);
}

std::int32_t SeparableFilter::SetWeights(const float* weights, std::int32_t count) {
  // The old ones go first, also where the new ones are refused.
  weights_.reset();
  weightCount_ = 0;
  if (weights == nullptr || count < 1) {
    return kRefused;
  }
  weights_ = AllocateFloats(count);
  if (weights_ == nullptr) {
    return kStatusNoMemory;
  }
  std::copy_n(weights, count, weights_.get());
  weightCount_ = count;
  return kStatusOk;
}

std::int32_t SeparableFilter::MakeWeights(std::int32_t type, float radius, float parameter) {
  const std::int32_t length = FilterWeightCount(type, radius);
  if (length == 0) {
    return kRefused;
  }
  const Floats weights = AllocateFloats(length);
  if (weights == nullptr) {
    return kStatusNoMemory;
  }
  FillFilterWeights(type, radius, parameter, length, weights.get());
  return SetWeights(weights.get(), length);
}

std::int32_t SeparableFilter::Prepare(const ImageRec* image) {
  source_ = nullptr;
  if (!ImageHasSamples(image)) {
    return kStatusSizeRange;
  }
  size_ = {image->width, image->height};
  // Before any weights their count is below 0, which must not make a line shorter than the image's.
  const std::int64_t width = PaddedSide(size_.width, weightCount_);
  const std::int64_t height = PaddedSide(size_.height, weightCount_);
  if (!IsGridSide(width, kLargestPaddedSize) || !IsGridSide(height, kLargestPaddedSize)) {
    return kStatusSizeRange;
  }
  padded_ = {static_cast<std::int32_t>(width), static_cast<std::int32_t>(height)};
  // Intended: the clone of an earlier call is not freed.
  work_ = ImageClone(image);
  if (work_ == nullptr) {
    return kStatusNoMemory;
  }
  source_ = image;
  return kStatusOk;
}

std::int32_t SeparableFilter::Filter(ImageRec* dest, std::uint32_t channelMask,
                                     std::uint32_t direction, std::int32_t edgeMode, Rows* rows) {
  if (weights_ == nullptr || source_ == nullptr) {
    return kStatusNotLoaded;
  }
  if (dest == nullptr || dest->width != size_.width || dest->height != size_.height ||
      dest->sampleType != source_->sampleType) {
    return kStatusDestination;
  }
  if (!ImageHasSamples(dest) || !ImageHasSamples(source_)) {
    return kStatusSizeRange;
  }
  const bool alongRows = (direction & kAlongRows) != 0;
  const bool alongColumns = (direction & kAlongColumns) != 0;
  FilterPass pass{source_,     dest,     weights_.get(),     weightCount_,
                  channelMask, edgeMode, /*alongRows=*/true, padded_.width};
  if (alongRows) {
    pass.dest = alongColumns ? work_ : dest;
    rows->Run(pass, dest->height);
    if (rows->Status() != kStatusOk) {
      return rows->Status();
    }
    pass.source = work_;
  }
  if (alongColumns) {
    pass.dest = dest;
    pass.alongRows = false;
    pass.padded = padded_.height;
    rows->Run(pass, dest->width);
    return rows->Status();
  }
  return kStatusOk;
}

}  // namespace lx
