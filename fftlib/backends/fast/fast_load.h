// SPDX-License-Identifier: BSD-3-Clause
// From a mask to the spectrum of its PSF.
#pragma once

#include "fftlib/backends/fast/fast_grids.h"
#include "fftlib/backends/fast/mask_extent.h"
#include "fftlib/core/rows.h"
#include "imagelib/imagelib.h"

namespace lx {

// Makes the PSF's spectrum in the buffers of a grid that is prepared: scaled so that a frame
// through transforms and product keeps its sum. Only the mask's own rows are transformed. Asks
// before every row of the mask; those that a cancel keeps it from count as zero.
//   mask  any sample type, of which the first channel counts
// The smallest of its weights but 0, of a sum of 1.
// Intended: a mask of zeros makes every number of the spectrum not-a-number.
double LoadSpectrum(const ImageRec& mask, const MaskExtent& extent, FastGrids* grids,
                    const LineOperations& operations, Rows* rows);

}  // namespace lx
