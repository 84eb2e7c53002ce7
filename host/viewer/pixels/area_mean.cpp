// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/pixels/area_mean.h"

#include <algorithm>
#include <cmath>
#include <cstddef>

namespace glimmerhost {
namespace {

// Red, green, blue and alpha, as one number.
using Pixel __attribute__((vector_size(4 * sizeof(float)))) = float;

Pixel LoadPixel(const float* from) {
  Pixel pixel;
  __builtin_memcpy(&pixel, from, sizeof pixel);
  return pixel;
}

template <class Sample>
const Sample* Samples(const Picture& picture);
template <>
const std::uint16_t* Samples(const Picture& picture) {
  return picture.samples.data();
}
template <>
const float* Samples(const Picture& picture) {
  return picture.floats.data();
}

template <class Sample>
void AddRow(const Sample* row, float weight, std::size_t count, float* sums) {
  for (std::size_t i = 0; i < count; ++i) {
    sums[i] += static_cast<float>(row[i]) * weight;
  }
}

// Over the rows, column by column. In blocks that stay in the first cache.
template <class Sample>
void SumRows(const Picture& picture, const Stretch& rows, int firstColumn, int endColumn,
             float* sums) {
  constexpr std::size_t kBlock = 1024;
  const std::size_t stride = static_cast<std::size_t>(picture.width) * 4;
  const std::size_t begin = static_cast<std::size_t>(firstColumn) * 4;
  const std::size_t end = static_cast<std::size_t>(endColumn) * 4;
  for (std::size_t at = begin; at < end; at += kBlock) {
    const std::size_t count = std::min(kBlock, end - at);
    float* const block = sums + (at - begin);
    std::fill_n(block, count, 0.0F);
    for (int y = rows.first; y <= rows.last; ++y) {
      const float weight = y == rows.first  ? rows.firstWeight
                           : y == rows.last ? rows.lastWeight
                                            : 1.0F;
      AddRow(Samples<Sample>(picture) + static_cast<std::size_t>(y) * stride + at, weight, count,
             block);
    }
  }
}

}  // namespace

std::vector<Stretch> CutIntoStretches(double start, double length, int count, int size) {
  std::vector<Stretch> stretches;
  stretches.reserve(static_cast<std::size_t>(count));
  for (int i = 0; i < count; ++i) {
    const double begin = std::clamp(start + i * length, 0.0, static_cast<double>(size));
    const double end = std::clamp(start + (i + 1) * length, begin, static_cast<double>(size));
    const int first = std::min(static_cast<int>(begin), size - 1);
    const int last = std::clamp(static_cast<int>(std::ceil(end)) - 1, first, size - 1);
    const double firstWeight = std::min(end, first + 1.0) - begin;
    const double lastWeight = last > first ? end - last : 0.0;
    // Nothing is left of a stretch whose middle is on the edge, by rounding: it is its first pixel.
    const double sum = firstWeight + lastWeight + std::max(last - first - 1, 0);
    stretches.push_back({first, last, static_cast<float>(sum > 0.0 ? firstWeight : 1.0),
                         static_cast<float>(lastWeight),
                         static_cast<float>(sum > 0.0 ? 1.0 / sum : 1.0)});
  }
  return stretches;
}

void MeanRow(const Picture& picture, const std::vector<Stretch>& columns, const Stretch& rows,
             std::vector<float>* sums, float* means) {
  const int firstColumn = columns.front().first;
  const int endColumn = columns.back().last + 1;
  sums->resize(static_cast<std::size_t>(endColumn - firstColumn) * 4);
  if (picture.IsFloat()) {
    SumRows<float>(picture, rows, firstColumn, endColumn, sums->data());
  } else {
    SumRows<std::uint16_t>(picture, rows, firstColumn, endColumn, sums->data());
  }
  for (const Stretch& column : columns) {
    const float* from = sums->data() + std::ptrdiff_t{column.first - firstColumn} * 4;
    Pixel sum = LoadPixel(from) * column.firstWeight;
    for (int x = column.first + 1; x < column.last; ++x) {
      sum += LoadPixel(from += 4);
    }
    if (column.last > column.first) {
      sum += LoadPixel(from + 4) * column.lastWeight;
    }
    sum *= column.share * rows.share;
    __builtin_memcpy(means, &sum, sizeof sum);
    means += 4;
  }
}

}  // namespace glimmerhost
