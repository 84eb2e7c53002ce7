// SPDX-License-Identifier: BSD-3-Clause
#include "host/viewer/pixels/area_mean.h"

#include <algorithm>
#include <array>
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

// Four rows at most, each with its weight: sums are stored once, not once a row.
template <class Sample, std::size_t rows>
void AddRows(const std::array<const Sample*, 4>& row, const std::array<float, 4>& weight,
             std::size_t count, float* __restrict sums) {
  for (std::size_t i = 0; i < count; ++i) {
    float sum = static_cast<float>(row[0][i]) * weight[0];
    if constexpr (rows > 1) {
      sum += static_cast<float>(row[1][i]) * weight[1];
    }
    if constexpr (rows > 2) {
      sum += static_cast<float>(row[2][i]) * weight[2];
    }
    if constexpr (rows > 3) {
      sum += static_cast<float>(row[3][i]) * weight[3];
    }
    sums[i] += sum;
  }
}

template <class Sample>
constexpr std::array kAddRows{AddRows<Sample, 1>, AddRows<Sample, 2>, AddRows<Sample, 3>,
                              AddRows<Sample, 4>};

// Over rows with their weights, column by column. In blocks that stay in the first cache.
template <class Sample>
void SumRows(const Picture& picture, int firstRow, const float* weights, int count, int firstColumn,
             int endColumn, float* sums) {
  constexpr std::size_t kBlock = 1024;
  const std::size_t stride = static_cast<std::size_t>(picture.width) * 4;
  const std::size_t end = static_cast<std::size_t>(endColumn) * 4;
  std::size_t at = static_cast<std::size_t>(firstColumn) * 4;
  for (; at < end; at += kBlock, sums += kBlock) {
    const std::size_t length = std::min(kBlock, end - at);
    std::fill_n(sums, length, 0.0F);
    for (int y = 0; y < count; y += 4) {
      std::array<const Sample*, 4> row{};
      std::array<float, 4> weight{};
      const auto height = static_cast<std::size_t>(std::min(count - y, 4));
      for (std::size_t i = 0; i < height; ++i) {
        const std::size_t line = static_cast<std::size_t>(y) + i;
        row[i] =
            Samples<Sample>(picture) + (static_cast<std::size_t>(firstRow) + line) * stride + at;
        weight[i] = weights[line];
      }
      kAddRows<Sample>[height - 1](row, weight, length, sums);
    }
  }
}

// The sums with the weights of each stretch.
//   sums  from the first pixel of the first stretch on
void SumColumns(const Stretches& columns, const float* sums, float* means) {
  const int origin = columns.first.front();
  const int taps = columns.taps;
  const float* weight = columns.weights.data();
  for (const int first : columns.first) {
    const float* from = sums + std::ptrdiff_t{first - origin} * 4;
    Pixel mean = LoadPixel(from) * *weight++;
    for (int tap = 1; tap < taps; ++tap) {
      mean += LoadPixel(from += 4) * *weight++;
    }
    __builtin_memcpy(means, &mean, sizeof mean);
    means += 4;
  }
}

// What of a pixel lies between two places.
double Covered(int pixel, double begin, double end) {
  return std::max(std::min(end, pixel + 1.0) - std::max(begin, static_cast<double>(pixel)), 0.0);
}

}  // namespace

Stretches CutIntoStretches(double start, double length, int count, int size) {
  Stretches stretches;
  stretches.taps = std::min(static_cast<int>(std::ceil(length)) + 1, size);
  for (int i = 0; i < count; ++i) {
    const double begin = std::clamp(start + i * length, 0.0, static_cast<double>(size));
    const double end = std::clamp(start + (i + 1) * length, begin, static_cast<double>(size));
    const int first = std::min(static_cast<int>(begin), size - 1);
    stretches.first.push_back(first);
    const double share = end > begin ? 1.0 / (end - begin) : 0.0;
    for (int tap = 0; tap < stretches.taps; ++tap) {
      stretches.weights.push_back(static_cast<float>(Covered(first + tap, begin, end) * share));
    }
  }
  return stretches;
}

AreaMean::AreaMean(const Picture& picture, const Stretches& columns)
    : picture_(picture),
      columns_(columns),
      endColumn_(std::min(columns.first.back() + columns.taps, picture.width)),
      sums_(static_cast<std::size_t>(columns.first.back() + columns.taps - columns.first.front()) *
            4) {}

void AreaMean::Row(const Stretches& rows, std::size_t i, float* means) {
  const float* const weights = rows.WeightsOf(i);
  const int firstRow = rows.first[i];
  int count = rows.taps;
  while (count > 1 && weights[count - 1] == 0.0F) {
    --count;
  }
  const int firstColumn = columns_.first.front();
  if (picture_.IsFloat()) {
    SumRows<float>(picture_, firstRow, weights, count, firstColumn, endColumn_, sums_.data());
  } else {
    SumRows<std::uint16_t>(picture_, firstRow, weights, count, firstColumn, endColumn_,
                           sums_.data());
  }
  SumColumns(columns_, sums_.data(), means);
}

}  // namespace glimmerhost
