// SPDX-License-Identifier: BSD-3-Clause
// Planes in bands of magnitude: how a plane that spans more than a transform's precision is
// convolved.
//
// A transform's rounding is relative to the brightest number of the whole plane, and the root that
// undoes a steep curve lifts it: what should be dark would be noise. So numbers are convolved band
// by band, each band a fixed factor of magnitude and scaled to 1, and a band counts only where the
// aperture reaches a number of it. What is summed is then as exact as a sum over the aperture.
#pragma once

#include <algorithm>
#include <atomic>
#include <bit>
#include <cstddef>
#include <cstdint>

#include "fftlib/backends/fast/fast_rows.h"
#include "fftlib/backends/fast/reach.h"

namespace lx {

// How wide bands are. Whole powers of two, so that scaling is exact. By number, from the brightest
// down; of 27 bits:
//
//   band 3     2^-26 up to but not with 2
//   band 4     2^-53 up to but not with 2^-26
//   ...
struct BandRule {
  static constexpr std::int32_t kCount = 63;  // what is below them counts as 0

  std::int32_t bits;

  // Of a number that is not below 0; kCount for one that counts as 0.
  std::int32_t Of(double value) const {
    const auto exponent =
        static_cast<std::int32_t>(std::bit_cast<std::uint64_t>(value) >> 52U) - 1023;
    return std::clamp((Top(0) - exponent) / bits, 0, kCount);
  }

  // The exponent of the highest power of two in a band.
  std::int32_t Top(std::int32_t band) const { return bits * (3 - band); }
};

// As wide as precision allows: a number at a band's lower end, reached with the aperture's least
// weight, is to stand out from the rounding of a frame full of numbers at its upper end.
//   leastWeight  the smallest of the aperture's weights but 0, of a sum of 1
BandRule MakeBandRule(const EmphasisCurve& curve, double leastWeight);

// One band.
struct Band {
  double low;   // at least that
  double high;  // below that
  double scale;
  double scaleBack;
};
Band MakeBand(const BandRule& rule, std::int32_t number);

// The brightest number of a float picture's plane, before any curve.
struct BrightestPass {
  const ImageRec* source;
  std::uint32_t channelBit;
  std::atomic<double>* brightest;  // 0 or above

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// A plane's numbers into rows of the frame's width, and which bands they have, a bit each. Asks as
// ForwardPass does.
struct ValuesPass {
  FastFrame frame;
  PicturePlane from;
  BandRule rule;
  double* values;
  std::atomic<std::uint64_t>* bands;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// The numbers of a band, as bits.
struct MarkPass {
  const Reach* reach;
  Band band;
  const double* values;
  std::int32_t width;
  BitWord* marked;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

struct ReachPass {
  const Reach* reach;
  const BitWord* marked;
  std::int32_t width;
  BitWord* reached;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// A band into a plane of row spectra.
struct BandPass {
  FastFrame frame;
  Band band;
  const double* values;
  double* spectra;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

// What has become of it, added to the rows of the sum where it counts.
struct SumPass {
  FastFrame frame;
  Band band;
  const double* spectra;
  const BitWord* reached;
  bool isFirst;  // the sum holds nothing yet
  double* sum;

  void operator()(Rows& rows, std::int32_t first, std::int32_t last) const;
};

}  // namespace lx
