// SPDX-License-Identifier: BSD-3-Clause
#include "fftlib/backends/fast/reach.h"

#include <algorithm>
#include <bit>

#include "fftlib/planes/channel_rows.h"

namespace lx {
namespace {

constexpr std::int64_t kBits = 64;

// to |= the bits of from that begin at bit start. There is a word behind those that are read.
void AddShifted(const BitWord* from, std::int64_t start, std::int64_t words, BitWord* to) {
  from += start / kBits;
  const auto shift = static_cast<unsigned>(start % kBits);
  if (shift == 0) {
    for (std::int64_t w = 0; w < words; ++w) {
      to[w] |= from[w];
    }
    return;
  }
  for (std::int64_t w = 0; w < words; ++w) {
    to[w] |= (from[w] >> shift) | (from[w + 1] << (kBits - shift));
  }
}

void SetBits(std::int64_t begin, std::int64_t end, BitWord* bits) {
  for (std::int64_t b = begin; b < end; ++b) {
    bits[b / kBits] |= BitWord{1} << static_cast<unsigned>(b % kBits);
  }
}

bool IsSet(const BitWord* bits, std::int64_t at) {
  return ((bits[at / kBits] >> static_cast<unsigned>(at % kBits)) & 1U) != 0;
}

bool IsFull(const BitWord* bits, std::int64_t count) {
  for (std::int64_t w = 0; w < count / kBits; ++w) {
    if (bits[w] != ~BitWord{0}) {
      return false;
    }
  }
  const auto rest = static_cast<unsigned>(count % kBits);
  return rest == 0 || (~bits[count / kBits] << (kBits - rest)) == 0;
}

}  // namespace

void MarkMask(const ImageRec& mask, const MaskExtent& extent, BitWord* bits) {
  const std::int64_t words = BitWords(mask.width);
  for (std::int32_t y = extent.top; y <= extent.bottom; ++y) {
    BitWord* row = bits + words * y;
    std::fill_n(row, words, BitWord{0});
    for (std::int32_t x = extent.left; x <= extent.right; ++x) {
      double sample = 0.0;
      FillFromChannel(mask, 0, ChannelGamma{}, {x, y, 1}, &sample);
      if (sample != 0.0) {
        SetBits(x, x + 1, row);
      }
    }
  }
}

Reach::Reach(const Aperture& aperture, std::int32_t width, std::int32_t height, bool repeats)
    : aperture_(aperture),
      width_(width),
      height_(height),
      repeats_(repeats),
      across_(ReachOf(aperture.extent.left, aperture.extent.right, aperture.middleX)),
      // A row is read from any of its places on, by as many words as the frame has.
      words_(BitWords(std::int64_t{width} + across_.before + across_.after) + 1),
      levels_(std::bit_width(
          static_cast<std::uint32_t>(aperture.extent.right - aperture.extent.left + 1))) {}

void Reach::MarkRow(const double* values, double low, double high, BitWord* row) const {
  std::fill_n(row, RowWords(), BitWord{0});
  for (std::int32_t x = 0; x < width_; x += 64) {
    const std::int32_t count = std::min(64, width_ - x);
    BitWord word = 0;
    for (std::int32_t i = 0; i < count; ++i) {
      const bool isIn = values[x + i] >= low && values[x + i] < high;
      word |= static_cast<BitWord>(isIn) << static_cast<unsigned>(i);
    }
    const std::int64_t at = std::int64_t{x} + across_.before;
    const auto shift = static_cast<unsigned>(at % kBits);
    row[at / kBits] |= word << shift;
    if (shift != 0) {
      row[at / kBits + 1] |= word >> (kBits - shift);
    }
  }
  const std::int64_t end = std::int64_t{across_.before} + width_;
  if (repeats_ && IsSet(row, across_.before)) {
    SetBits(0, across_.before, row);
  }
  if (repeats_ && IsSet(row, end - 1)) {
    SetBits(end, end + across_.after, row);
  }
  for (std::int64_t level = 1; level < levels_; ++level) {
    const BitWord* from = row + words_ * (level - 1);
    BitWord* to = row + words_ * level;
    std::copy_n(from, words_, to);
    const std::int64_t step = std::int64_t{1} << (level - 1);
    // What lies behind the last word is nothing.
    const std::int64_t whole = step / kBits;
    AddShifted(from, step, words_ - whole - 1, to);
    to[words_ - whole - 1] |= from[words_ - 1] >> static_cast<unsigned>(step % kBits);
  }
}

// The aperture's row, one stretch of pixels after another: pixel x comes from x - right to x -
// left.
void Reach::AddStretches(const BitWord* row, std::int32_t maskRow, BitWord* reached) const {
  const BitWord* bits = aperture_.bits + BitWords(width_) * maskRow;
  std::int32_t x = aperture_.extent.left;
  const std::int32_t end = aperture_.extent.right + 1;
  while (x < end) {
    while (x < end && !IsSet(bits, x)) {
      ++x;
    }
    const std::int32_t left = x;
    while (x < end && IsSet(bits, x)) {
      ++x;
    }
    const std::int32_t length = x - left;
    if (length == 0) {
      return;
    }
    const std::int64_t start = across_.before - (x - 1 - aperture_.middleX);
    const int level = std::bit_width(static_cast<std::uint32_t>(length)) - 1;
    const BitWord* marked = row + words_ * level;
    AddShifted(marked, start, BitWords(width_), reached);
    AddShifted(marked, start + length - (std::int64_t{1} << level), BitWords(width_), reached);
  }
}

// From the aperture's middle outwards, where its rows are longest: most rows are full soon.
void Reach::FindRow(const BitWord* marked, std::int32_t y, BitWord* reached) const {
  std::fill_n(reached, BitWords(width_), BitWord{0});
  const MaskExtent& extent = aperture_.extent;
  const std::int32_t middle = (extent.top + extent.bottom) / 2;
  for (std::int32_t i = 0; i < 2 * extent.Rows(); ++i) {
    const std::int32_t maskRow = i % 2 == 0 ? middle + i / 2 : middle - 1 - i / 2;
    if (maskRow < extent.top || maskRow > extent.bottom) {
      continue;
    }
    const std::int32_t from = y - (maskRow - aperture_.middleY);
    if (!repeats_ && (from < 0 || from >= height_)) {
      continue;
    }
    const BitWord* row = marked + RowWords() * std::clamp(from, 0, height_ - 1);
    if (std::all_of(row, row + words_, [](BitWord word) { return word == 0; })) {
      continue;
    }
    AddStretches(row, maskRow, reached);
    if (IsFull(reached, width_)) {
      return;
    }
  }
}

}  // namespace lx
