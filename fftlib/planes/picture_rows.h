// SPDX-License-Identifier: BSD-3-Clause
// Planes of a picture, and a picture from its planes, a piece of a row at a time.
#pragma once

#include <cstdint>

#include "fftlib/core/run.h"
#include "fftlib/planes/row_operations.h"
#include "imagelib/imagelib.h"

namespace lx {

// The pixels from (x, y) on to the right.
struct RowPiece {
  std::int32_t x;
  std::int32_t y;
  std::int32_t width;
};

// Whether the emphasis curve belongs to the plane of a channel bit; chroma has none.
bool HasCurve(std::uint32_t channelBit, const Look& look);

// The plane of a channel bit from 0 to 1, before any curve. Float samples are not read, and give
// zeros.
//   row  as many numbers as the piece has pixels
void FillFromPicture(const ImageRec& source, std::uint32_t channelBit, RowPiece piece, double* row);

// Pixels from planes, each scaled first; clamped and rounded. Float images are left as they are.
//   full32  what 1 becomes in 32-bit samples, modulo 2^32
void StoreToPicture(const PlaneRow& planes, const PlaneScale& scale, RowPiece piece, double full32,
                    ImageRec* dest);

}  // namespace lx
