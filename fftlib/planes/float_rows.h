// SPDX-License-Identifier: BSD-3-Clause
// Planes of a picture of floats, and a picture of floats from its planes: not limited to 0 to 1.
// Chroma is 0 where there is no colour, so that nothing around a picture is black. A picture of one
// channel has that as its luma, and no chroma.
#pragma once

#include <cstdint>

#include "fftlib/planes/emphasis_curve.h"
#include "fftlib/planes/picture_rows.h"
#include "fftlib/planes/row_operations.h"
#include "imagelib/imagelib.h"

namespace lx {

// The plane of a channel bit, before any curve. A sample that is not finite counts as 0: it would
// spread over the whole frame.
//   row  as many numbers as the piece has pixels
void FillFromFloatPicture(const ImageRec& source, std::uint32_t channelBit, RowPiece piece,
                          double* row);

// Pixels from planes.
void StoreToFloatPicture(const PlaneRow& planes, RowPiece piece, ImageRec* dest);

// The emphasis curve without its upper end, in place: above 1 it goes on as a straight line, of
// the slope that it has there. So a highlight keeps how bright it is. Below 0 it stays at 0. For a
// curve that is on.
void ApplyOpenCurve(const EmphasisCurve& curve, std::int32_t count, double* values);
void UndoOpenCurve(const EmphasisCurve& curve, std::int32_t count, double* values);

}  // namespace lx
