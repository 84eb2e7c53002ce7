// The lengths that transforms of mixed radix are quick at, and how each is taken apart.
//
// A length is a product of radices of 2 to 10, one a stage. All that decides is here, so that a
// length is always taken apart in the same way: nothing is tried out while the program runs.
#pragma once

#include <array>
#include <cstdint>

namespace lx {

inline constexpr std::int32_t kLargestRadix = 10;

// What a stage of each radix takes of a point there and back, relative to radix 8, its twiddles and
// its way through the cache included. Medians of transforms_benchmark's BM_Stage, which runs a
// stage over 140 lines of eight columns, AVX-512 and AVX2 averaged.
inline constexpr std::array<std::int32_t, kLargestRadix + 1> kStageCosts{
    0, 0, 62, 68, 68, 84, 80, 118, 100, 112, 112,
};

inline constexpr std::int32_t kMostStages = 8;

// The radices of a length, the first stage's first. At least two stages, for lengths without two
// radices by stages of 1, which leave what they are given.
struct Radices {
  std::int32_t count = 0;
  std::array<std::int32_t, kMostStages> radix{};
  std::int32_t cost = 0;  // of a point, as above
};

namespace quick_sizes {

// The cheapest way of taking a length apart into radices up to largest, from the largest down.
constexpr void Search(std::int32_t length, std::int32_t largest, Radices* now, Radices* best) {
  if (length == 1) {
    if (best->count == 0 || now->cost < best->cost) {
      *best = *now;
    }
    return;
  }
  if (now->count == kMostStages) {
    return;
  }
  for (std::int32_t radix = largest; radix >= 2; --radix) {
    const std::int32_t cost = kStageCosts[static_cast<std::size_t>(radix)];
    if (length % radix != 0 || (best->count != 0 && now->cost + cost >= best->cost)) {
      continue;
    }
    now->radix[static_cast<std::size_t>(now->count++)] = radix;
    now->cost += cost;
    Search(length / radix, radix, now, best);
    now->cost -= cost;
    now->radix[static_cast<std::size_t>(--now->count)] = 0;
  }
}

}  // namespace quick_sizes

// Whether a length is a product of 2, 3, 5 and 7.
constexpr bool IsSmooth(std::int32_t length) {
  for (const std::int32_t prime : {2, 3, 5, 7}) {
    while (length > 1 && length % prime == 0) {
      length /= prime;
    }
  }
  return length == 1;
}

// Of a length that is a product of 2, 3, 5 and 7; without stages for any other.
constexpr Radices TakeApart(std::int32_t length) {
  Radices now;
  Radices best;
  if (!IsSmooth(length)) {
    return best;
  }
  quick_sizes::Search(length, kLargestRadix, &now, &best);
  if (length == 1 || best.count != 0) {
    while (best.count < 2) {
      best.radix[static_cast<std::size_t>(best.count++)] = 1;
    }
  }
  return best;
}

// The length not below atLeast whose transform takes least time, of those up to an eighth above it;
// the next one where there is none so near.
//   atLeast  1 or more
//   step     2 for an even length, whose half is what is taken apart; else 1
constexpr std::int64_t QuickSize(std::int64_t atLeast, std::int32_t step = 1) {
  // The rest of a frame's work grows with the length alone.
  constexpr std::int64_t kRest = 200;
  std::int64_t best = 0;
  std::int64_t bestCost = 0;
  std::int64_t length = (atLeast + step - 1) / step * step;
  for (; best == 0 || length <= atLeast + atLeast / 8; length += step) {
    const Radices radices = TakeApart(static_cast<std::int32_t>(length / step));
    const std::int64_t cost = length * (kRest + radices.cost);
    if (radices.count != 0 && (best == 0 || cost < bestCost)) {
      best = length;
      bestCost = cost;
    }
  }
  return best;
}

}  // namespace lx
