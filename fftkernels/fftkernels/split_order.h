// SPDX-License-Identifier: BSD-3-Clause
// How a transform falls apart, and the order of frequencies that comes of it.
//
// A transform of n splits into two halves. The first takes the even frequencies 2s, the second
// the odd ones, s being the frequencies of a transform of n/2. There are two kinds of blocks:
//
//   kDown  2s as kDown, then 2s + 1 as kTurn
//   kTurn  2s as kDown, then 2s - 1 as kDown
//
// A whole transform is kDown. What stands in its second half is 2s + 1 of a kTurn, so 4t + 1 and
// 4t - 1: the conjugate pairs of split radix (Kamar and Elcherif 1989), whose twiddles are one
// another's conjugates.
#pragma once

#include <array>

namespace lx {

enum class SplitOrder { kDown, kTurn };

// After radix parts have been split off a block, part k holds the frequencies
// radix * t + shift[k], t being those of a block of the order of[k].
template <int radix>
struct SplitParts {
  std::array<int, radix> shift{};
  std::array<SplitOrder, radix> of{};
};

template <int radix>
constexpr SplitParts<radix> PartsOf(SplitOrder order) {
  SplitParts<radix> parts;
  if constexpr (radix == 1) {
    parts.of[0] = order;
  } else {
    constexpr int kHalf = radix / 2;
    const bool down = order == SplitOrder::kDown;
    const SplitParts<kHalf> even = PartsOf<kHalf>(SplitOrder::kDown);
    const SplitParts<kHalf> odd = PartsOf<kHalf>(down ? SplitOrder::kTurn : SplitOrder::kDown);
    for (int k = 0; k < kHalf; ++k) {
      parts.shift[k] = 2 * even.shift[k];
      parts.of[k] = even.of[k];
      parts.shift[kHalf + k] = 2 * odd.shift[k] + (down ? 1 : -1);
      parts.of[kHalf + k] = odd.of[k];
    }
  }
  return parts;
}

// Where a block of the one order has what stands at place p in the other. The places come in
// pairs.
template <int count>
constexpr int PlaceInOtherOrder(int p) {
  const SplitParts<count> down = PartsOf<count>(SplitOrder::kDown);
  const SplitParts<count> turn = PartsOf<count>(SplitOrder::kTurn);
  int q = 0;
  while ((down.shift[q] - turn.shift[p]) % count != 0) {
    ++q;
  }
  return q;
}

}  // namespace lx
