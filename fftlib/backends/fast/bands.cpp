// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/bands.h"

#include <algorithm>
#include <cmath>
#include <limits>

#include "fftlib/planes/float_rows.h"

namespace lx {
namespace {

std::uint64_t BandsOf(const BandRule& rule, const double* values, std::int32_t count) {
  std::uint64_t bands = 0;
  for (std::int32_t x = 0; x < count; ++x) {
    bands |= std::uint64_t{1} << static_cast<unsigned>(rule.Of(values[x]));
  }
  return bands;
}

double PowerOfTwo(std::int32_t exponent) { return std::ldexp(1.0, exponent); }

}  // namespace

// What rounding leaves of a frame is some 2^-53 of its numbers, and the root divides an error by
// its exponent. The factor keeps errors below half a step of 15 bits, as seen with single dim
// points beside a white half of the frame.
BandRule MakeBandRule(const EmphasisCurve& curve, double leastWeight) {
  constexpr double kRoom = 0x1p40;
  const double exponent = curve.apply.high + curve.apply.low;
  const double factor = std::clamp(kRoom * exponent * leastWeight, 0x1p16, 0x1p40);
  return {std::ilogb(factor)};
}

Band MakeBand(const BandRule& rule, std::int32_t number) {
  const std::int32_t top = rule.Top(number);
  // Above the first there is no other: a light of a float picture has no end.
  const double high = number == 0 ? std::numeric_limits<double>::infinity() : PowerOfTwo(top + 1);
  return {PowerOfTwo(top - rule.bits + 1), high, PowerOfTwo(-top), PowerOfTwo(top)};
}

void BrightestPass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  double largest = 0.0;
  double row[kPiece];
  for (std::int32_t y = first; y <= last; ++y) {
    for (std::int32_t x = 0; x < source->width; x += kPiece) {
      const std::int32_t width = std::min<std::int32_t>(kPiece, source->width - x);
      FillFromFloatPicture(*source, channelBit, {x, y, width}, row);
      largest = std::max(largest, *std::max_element(row, row + width));
    }
  }
  double before = brightest->load(std::memory_order_relaxed);
  while (before < largest &&
         !brightest->compare_exchange_weak(before, largest, std::memory_order_relaxed)) {
  }
}

void ValuesPass::operator()(Rows& rows, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const std::ptrdiff_t width = frame.grids->Layout().frame.width;
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  std::uint64_t found = 0;
  EachEight(first, last, [&](std::int32_t y, std::int32_t wanted) {
    const std::int32_t granted = AskFor(rows, wanted);
    if (granted > 0) {
      FillBuffers(frame, std::span(&from, 1), y, granted, {scratch.Data()});
      UnpackRows(frame, scratch.Data(), y, granted, [&](RowPiece piece, const double* row) {
        std::copy_n(row, piece.width, values + piece.y * width + piece.x);
        found |= BandsOf(rule, row, piece.width);
      });
    }
    std::fill_n(values + (y + granted) * width, (wanted - granted) * width, 0.0);
  });
  bands->fetch_or(found, std::memory_order_relaxed);
}

void MarkPass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  for (std::ptrdiff_t y = first; y <= last; ++y) {
    reach->MarkRow(values + y * width, band.low, band.high, marked + y * reach->RowWords());
  }
}

void ReachPass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  for (std::int32_t y = first; y <= last; ++y) {
    reach->FindRow(marked, y, reached + BitWords(width) * y);
  }
}

void BandPass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const std::ptrdiff_t width = frame.grids->Layout().frame.width;
  const double low = band.low;
  const double high = band.high;
  const double scale = band.scale;
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  EachEight(first, last, [&](std::int32_t y, std::int32_t count) {
    PackRows(frame, y, count, scratch.Data(), [&](RowPiece piece, double* row) {
      const double* from = values + piece.y * width + piece.x;
      for (std::int32_t x = 0; x < piece.width; ++x) {
        const bool isIn = from[x] >= low && from[x] < high;
        row[x] = isIn ? from[x] * scale : 0.0;
      }
    });
    TransformRows(frame, count, scratch.Data(), frame.RowsOf(spectra, y));
  });
}

void SumPass::operator()(Rows& /*rows*/, std::int32_t first, std::int32_t last) const {
  if (first > last) {
    return;
  }
  const FastLayout& layout = frame.grids->Layout();
  const std::ptrdiff_t width = layout.frame.width;
  const double scale = band.scaleBack;
  const ScratchSlots::Use scratch(&frame.grids->Slots());
  EachEight(first, last, [&](std::int32_t y, std::int32_t count) {
    TransformRowsBack(frame, spectra + std::ptrdiff_t{y} * kStride, count, scratch.Data());
    UnpackRows(frame, scratch.Data(), y, count, [&](RowPiece piece, const double* row) {
      static_assert(kPiece == 64);  // a word of bits
      const BitWord counts = reached[layout.ReachWords() * piece.y + piece.x / kPiece];
      double* to = sum + piece.y * width + piece.x;
      for (std::int32_t x = 0; x < piece.width; ++x) {
        const bool isIn = ((counts >> static_cast<unsigned>(x)) & 1U) != 0;
        const double before = isFirst ? 0.0 : to[x];
        to[x] = before + (isIn ? row[x] * scale : 0.0);
      }
    });
  });
}

}  // namespace lx
