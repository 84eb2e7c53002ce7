// SPDX-License-Identifier: BSD-3-Clause
// Stored channels of a picture, one by one, without colour transform: a piece of a row at a time.
#pragma once

#include <cstdint>

#include "fftlib/core/run.h"
#include "fftlib/planes/picture_rows.h"
#include "imagelib/imagelib.h"

namespace lx {

// The gamma of one channel, ready for its rows. Without it the numbers are the stored ones.
struct ChannelGamma {
  bool on = false;
  double gamma = 1.0;
  double offset = 0.0;
  double gain = 1.0;
};

// Alpha, which has the fourth bit, goes without gamma unless it is treated like the picture.
ChannelGamma MakeChannelGamma(const Gamma& gamma, bool emphasisAlpha, std::int32_t channel);

// One channel as doubles, of any sample type.
//   row  as many numbers as the piece has pixels
void FillFromChannel(const ImageRec& source, std::int32_t channel, const ChannelGamma& gamma,
                     RowPiece piece, double* row);

// Numbers, scaled first, into one channel: clamped and truncated, as float unchanged.
void StoreToChannel(const double* row, double scale, std::int32_t channel,
                    const ChannelGamma& gamma, RowPiece piece, ImageRec* dest);

}  // namespace lx
