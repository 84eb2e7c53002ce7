// SPDX-License-Identifier: BSD-3-Clause
// Samples that a TIFF file holds as differences of neighbours, which are smaller numbers.
#pragma once

#include <cstddef>
#include <cstdint>

namespace glimmerhost {

struct TiffRows {
  std::uint16_t predictor;  // as the file's tag says it
  std::uint16_t bits;       // of a sample
  std::size_t step;         // samples from one to that of the next pixel
  std::size_t samples;      // in a row
  std::size_t rowBytes;
  bool swapped;  // bytes are not in this machine's order
};

// Whether UndoPrediction knows such rows.
bool CanUndoPrediction(const TiffRows& kind);

// Rows as they stand in the file become samples in this machine's byte order, in place.
void UndoPrediction(const TiffRows& kind, std::size_t rows, std::uint8_t* bytes);

}  // namespace glimmerhost
