// SPDX-License-Identifier: BSD-3-Clause
#include "host/pictures/png_tiff/tiff_prediction.h"

#include <tiffio.h>

#include <algorithm>
#include <bit>
#include <cstring>
#include <vector>

namespace glimmerhost {
namespace {

// Blocks of bytes lie anywhere.
template <class Sample>
Sample Load(const std::uint8_t* row, std::size_t i) {
  Sample sample;
  std::memcpy(&sample, row + i * sizeof sample, sizeof sample);
  return sample;
}

template <class Sample>
void Store(std::uint8_t* row, std::size_t i, Sample sample) {
  std::memcpy(row + i * sizeof sample, &sample, sizeof sample);
}

void SwapRow(std::size_t size, std::size_t samples, std::uint8_t* row) {
  for (std::size_t i = 0; i < samples; ++i) {
    std::reverse(row + i * size, row + (i + 1) * size);
  }
}

// Sums go around at the end of their range, as the differences did.
template <class Sample, std::size_t kStep>
void SumPixels(std::size_t samples, std::uint8_t* row) {
  Sample sums[kStep] = {};
  for (std::size_t i = 0; i + kStep <= samples; i += kStep) {
    for (std::size_t c = 0; c < kStep; ++c) {
      sums[c] = static_cast<Sample>(sums[c] + Load<Sample>(row, i + c));
      Store(row, i + c, sums[c]);
    }
  }
}

template <class Sample>
void SumRow(std::size_t step, std::size_t samples, std::uint8_t* row) {
  switch (step) {
    case 1:
      return SumPixels<Sample, 1>(samples, row);
    case 3:
      return SumPixels<Sample, 3>(samples, row);
    case 4:
      return SumPixels<Sample, 4>(samples, row);
    default:
      for (std::size_t i = step; i < samples; ++i) {
        Store(row, i, static_cast<Sample>(Load<Sample>(row, i) + Load<Sample>(row, i - step)));
      }
  }
}

void SumRowOf(std::size_t size, std::size_t step, std::size_t samples, std::uint8_t* row) {
  switch (size) {
    case 1:
      return SumRow<std::uint8_t>(step, samples, row);
    case 2:
      return SumRow<std::uint16_t>(step, samples, row);
    case 4:
      return SumRow<std::uint32_t>(step, samples, row);
    default:
      return SumRow<std::uint64_t>(step, samples, row);
  }
}

// Floats stand with the highest bytes of all samples first, then the next ones; bytes are the
// differences.
void UndoFloats(const TiffRows& kind, std::size_t size, std::uint8_t* row,
                std::vector<std::uint8_t>* planes) {
  SumRow<std::uint8_t>(kind.step, kind.samples * size, row);
  planes->assign(row, row + kind.samples * size);
  for (std::size_t i = 0; i < kind.samples; ++i) {
    for (std::size_t byte = 0; byte < size; ++byte) {
      const std::size_t place = std::endian::native == std::endian::little ? size - 1 - byte : byte;
      row[i * size + place] = (*planes)[byte * kind.samples + i];
    }
  }
}

}  // namespace

bool CanUndoPrediction(const TiffRows& kind) {
  const bool wholeBytes = kind.bits == 8 || kind.bits == 16 || kind.bits == 32 || kind.bits == 64;
  switch (kind.predictor) {
    case PREDICTOR_NONE:
      return wholeBytes || kind.bits < 8;
    case PREDICTOR_HORIZONTAL:
      return wholeBytes;
    case PREDICTOR_FLOATINGPOINT:
      return wholeBytes && kind.bits > 8;
    default:
      return false;
  }
}

void UndoPrediction(const TiffRows& kind, std::size_t rows, std::uint8_t* bytes) {
  const std::size_t size = kind.bits / 8;
  std::vector<std::uint8_t> planes;
  for (std::size_t y = 0; y < rows; ++y, bytes += kind.rowBytes) {
    if (kind.predictor == PREDICTOR_FLOATINGPOINT) {
      UndoFloats(kind, size, bytes, &planes);
      continue;
    }
    if (kind.swapped && size > 1) {
      SwapRow(size, kind.samples, bytes);
    }
    if (kind.predictor == PREDICTOR_HORIZONTAL) {
      SumRowOf(size, kind.step, kind.samples, bytes);
    }
  }
}

}  // namespace glimmerhost
